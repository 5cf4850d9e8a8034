#include "tests/support/guarded_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace {

constexpr std::size_t unit = 32;    // offsets are counted from multiples of this
constexpr std::size_t margin = 64;  // pattern bytes on either side that are filled and checked

std::size_t pageSize() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

// Not constant, so that a stray copy of a neighbouring byte is also detected.
std::uint8_t patternAt(const std::uint8_t* p) {
  return static_cast<std::uint8_t>(0xA5 ^ (reinterpret_cast<std::uintptr_t>(p) * 7));
}

}  // namespace

GuardedBuffer::GuardedBuffer(std::size_t capacity)
    : room_((capacity + unit + pageSize() - 1) / pageSize() * pageSize()) {
  void* const pages = mmap(nullptr, room_ + 2 * pageSize(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
  mapping_ = static_cast<std::uint8_t*>(pages);
  begin_ = mapping_ + pageSize();
  if (mprotect(begin_, room_, PROT_READ | PROT_WRITE) != 0) {
    throw std::system_error(errno, std::generic_category(), "mprotect");
  }
}

GuardedBuffer::~GuardedBuffer() { munmap(mapping_, room_ + 2 * pageSize()); }

void GuardedBuffer::place(std::size_t size, std::size_t offset, Against page) {
  if (size + unit > room_ || offset >= unit) throw std::invalid_argument("GuardedBuffer::place");
  const std::size_t latest = room_ - size;
  const std::size_t position =
      page == Against::front ? offset : latest - (latest % unit + unit - offset) % unit;
  std::uint8_t* const front = mapping_ + pageSize();
  begin_ = front + position;
  size_ = size;
  for (std::size_t i = 0; i < margin; ++i) {
    if (i < position) *(begin_ - 1 - i) = patternAt(begin_ - 1 - i);
    if (position + size + i < room_) end()[i] = patternAt(end() + i);
  }
}

std::string GuardedBuffer::damage() const {
  const auto position = static_cast<std::size_t>(begin_ - (mapping_ + pageSize()));
  for (std::size_t i = 0; i < margin; ++i) {
    const std::string distance = std::to_string(i + 1);
    const std::uint8_t* const before = begin_ - 1 - i;
    if (i < position && *before != patternAt(before)) return "byte " + distance + " before the array";
    const std::uint8_t* const after = end() + i;
    if (position + size_ + i < room_ && *after != patternAt(after)) {
      return "byte " + distance + " after the array";
    }
  }
  return {};
}
