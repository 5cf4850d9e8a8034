// Any bytes as a parameter file.
#include <sys/mman.h>
#include <unistd.h>

#include <new>

#include "engine/kamble.h"
#include "tests/fuzz/target.h"

namespace {

// A named file in memory.
class MemoryFile {
 public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : file_(memfd_create("parameters", MFD_CLOEXEC)) {
    if (file_ < 0 || write(file_, data, size) != static_cast<ssize_t>(size)) throw std::bad_alloc();
  }
  ~MemoryFile() { close(file_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(file_); }

 private:
  int file_;
};

// The seven fields as bit patterns.
std::array<std::uint32_t, 8> settings(const kAMBLE& engine) {
  std::array<std::uint32_t, 8> all{};
  std::size_t i = 0;
  for (const std::int32_t whole :
       {engine.thrMatch, engine.thrHeuris, engine.thrIllum, engine.thrCcPxl, engine.thrCcPxl2}) {
    std::memcpy(&all[i++], &whole, sizeof whole);
  }
  for (const float real : {engine.minObjW, engine.minObjH, engine.thrConnect})
    std::memcpy(&all[i++], &real, sizeof real);
  return all;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile whole(data, size);
  kAMBLE engine;
  engine.ParserParams(whole.path().c_str());
  const auto once = settings(engine);
  fuzz::require(engine.thrCcPxl == engine.thrCcPxl2, "the two component thresholds differ");
  fuzz::require(
      engine.frmCount == 0 && engine.szImgX == 0 && engine.minMatchNum == 2 && engine.lifeStatic == 3,
      "a field that no key sets was written");

  engine.ParserParams(whole.path().c_str());
  fuzz::require(settings(engine) == once, "a second reading gives something else");

  // Reading the first lines and then all lines gives the same as reading all lines.
  if (size == 0) return 0;
  const void* const middle = std::memchr(data + size / 2, '\n', size - size / 2);
  if (middle == nullptr) return 0;
  const MemoryFile first(data, static_cast<std::size_t>(static_cast<const std::uint8_t*>(middle) + 1 - data));
  kAMBLE other;
  other.ParserParams(first.path().c_str());
  other.ParserParams(whole.path().c_str());
  fuzz::require(settings(other) == once, "what was read before changes what is read");
  return 0;
}
