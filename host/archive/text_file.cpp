#include "host/archive/text_file.h"

#include <array>
#include <cstdio>
#include <memory>

#include "host/line_sink.h"

namespace lm::host {

std::optional<std::string> read_text(const std::string& file) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "re"), &std::fclose);
  if (!stream) return std::nullopt;
  std::string text;
  std::array<char, 4096> piece{};
  std::size_t length = 0;
  while ((length = std::fread(piece.data(), 1, piece.size(), stream.get())) > 0)
    text.append(piece.data(), length);
  if (std::ferror(stream.get()) != 0) return std::nullopt;
  return text;
}

void write_lines(const std::string& file, const std::vector<std::string>& lines) {
  LineSink sink(file);
  for (const std::string& line : lines) sink.write(line);
  sink.finish();
  sink.commit();
}

}  // namespace lm::host
