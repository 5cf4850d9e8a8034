// Allocation of the engine's planes.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

namespace lm {

inline constexpr std::size_t planeAlignment = 32;

// Advises huge pages for the aligned part: a frame's planes are a hundred thousand small pages otherwise, and
// the first frame spends its time on page faults. Nothing depends on it.
inline void adviseLarge(void* memory, std::size_t bytes) {
  constexpr std::size_t largePage = std::size_t{1} << 21;
  const std::size_t skipped = -reinterpret_cast<std::uintptr_t>(memory) % largePage;
  if (bytes < skipped + largePage) return;
  madvise(static_cast<char*>(memory) + skipped, (bytes - skipped) / largePage * largePage, MADV_HUGEPAGE);
}

// `bytes` bytes at 32-byte alignment, to be released with free(); null on failure, without a message. A count
// that wrapped below zero fails, as does one beyond the address space.
inline void* allocateAligned(std::int64_t bytes) {
  if (bytes < 0 || bytes > std::numeric_limits<std::ptrdiff_t>::max()) return nullptr;
  void* memory = nullptr;
  if (posix_memalign(&memory, planeAlignment, static_cast<std::size_t>(bytes)) != 0) return nullptr;
  adviseLarge(memory, static_cast<std::size_t>(bytes));
  return memory;
}

// Makes the plane `field` of `count` elements if it is null, every byte `fill`. A failure leaves it null, so
// that the next call tries again. Returns whether the plane exists.
template <typename T>
bool makeOnce(T*& field, std::int32_t count, int fill = 0) {
  static_assert(std::is_trivial_v<T>);
  if (field != nullptr) return true;
  const std::int64_t bytes = std::int64_t{count} * static_cast<std::int64_t>(sizeof(T));
  field = static_cast<T*>(allocateAligned(bytes));
  if (field == nullptr) return false;
  if (bytes > 0) std::memset(field, fill, static_cast<std::size_t>(bytes));
  return true;
}

template <typename T>
void release(T*& field) {
  std::free(field);
  field = nullptr;
}

// For planes that came from new[].
template <typename T>
void releaseArray(T*& field) {
  delete[] field;
  field = nullptr;
}

}  // namespace lm
