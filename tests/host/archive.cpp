#include "tests/host/archive.h"

#include <chrono>
#include <thread>

#include "tests/host/clips.h"

namespace archive {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string clip_bytes() {
  static const std::string bytes = [] {
    const program::Folder own;
    clips::write(own / "a.mkv", {64, 48}, clips::regular(20, 40ms));
    return program::read(own / "a.mkv");
  }();
  return bytes;
}

// 8000 samples of silence, 8 bits each, as a WAV file: the sizes are 36 + 8000 = 0x1f64 and 8000 = 0x1f40.
std::string sound_bytes() {
  const std::string header(
      "RIFF\x64\x1f\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x40\x1f\0\0\1\0\x8\0data\x40\x1f\0\0", 44);
  return header + std::string(8000, '\x80');
}

std::map<std::string, std::string> tree(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      files[fs::relative(entry.path(), folder).string()] = program::read(entry.path().string());
    }
  }
  return files;
}

bool eventually(const std::function<bool()>& holds) {
  const auto deadline = std::chrono::steady_clock::now() + 30s;
  while (std::chrono::steady_clock::now() < deadline) {
    if (holds()) return true;
    std::this_thread::yield();
  }
  return holds();
}

std::vector<std::string> arguments(std::vector<std::string> rest) {
  rest.insert(rest.begin(), {"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN});
  return rest;
}

}  // namespace archive
