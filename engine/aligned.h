// Allocation of the engine's planes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace lm {

inline constexpr std::size_t planeAlignment = 32;

// `bytes` bytes at 32-byte alignment, to be released with free(); null on failure, silently. A count that
// wrapped below zero is a request that no machine can meet.
inline void* allocateAligned(std::ptrdiff_t bytes) {
  if (bytes < 0) return nullptr;
  void* memory = nullptr;
  return posix_memalign(&memory, planeAlignment, static_cast<std::size_t>(bytes)) == 0 ? memory : nullptr;
}

// Makes the plane `field` of `count` elements if it is null: every byte `fill`. A failure leaves it null, so
// that the next call tries again. Returns whether the plane exists.
template <typename T>
bool makeOnce(T*& field, std::int32_t count, int fill = 0) {
  static_assert(std::is_trivial_v<T>);
  if (field != nullptr) return true;
  const std::ptrdiff_t bytes = static_cast<std::ptrdiff_t>(count) * static_cast<std::ptrdiff_t>(sizeof(T));
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
