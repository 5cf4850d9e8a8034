#include "host/base/whole_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "host/base/failure.h"

namespace lm::host::base {
namespace {

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

}  // namespace

std::optional<std::string> read_text(const std::string& path) {
  const Stream stream(std::fopen(path.c_str(), "re"), &std::fclose);
  if (!stream) return std::nullopt;
  std::string text;
  std::array<char, 4096> piece{};
  std::size_t length = 0;
  while ((length = std::fread(piece.data(), 1, piece.size(), stream.get())) > 0)
    text.append(piece.data(), length);
  if (std::ferror(stream.get()) != 0) return std::nullopt;
  return text;
}

std::string required_text(const std::string& path) {
  if (std::optional<std::string> text = read_text(path)) return *std::move(text);
  throw Failure(kRefused, path + ": " + std::generic_category().message(errno));
}

void write_bytes(const PendingFile& file, const std::string& bytes) {
  errno = 0;
  Stream out(std::fopen(file.path().c_str(), "we"), &std::fclose);
  const bool taken = out && std::fwrite(bytes.data(), 1, bytes.size(), out.get()) == bytes.size() &&
                     std::fclose(out.release()) == 0;
  if (!taken) cannot_write(file.target(), errno);
}

void write_file(const std::string& path, const std::string& bytes) {
  PendingFile file(path);
  write_bytes(file, bytes);
  file.commit();
}

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (!error && !std::filesystem::is_directory(path))
    error = std::make_error_code(std::errc::not_a_directory);
  if (error) throw Failure(kTrouble, path + " cannot be created: " + error.message());
  const PendingFile trial(path + "/trial");  // reports an unwritable folder now instead of at the first event
}

}  // namespace lm::host::base
