// Integer arithmetic that wraps, and conversions to integers that are defined for every value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace lm {

constexpr std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t wrapSub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
constexpr std::int32_t wrapMul(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

constexpr std::int64_t wrapAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
constexpr std::int64_t wrapSub(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
constexpr std::int64_t wrapMul(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

// Size of a frame or plane; 0 for a product that wrapped below zero.
constexpr std::size_t countOf(std::int32_t product) {
  return product > 0 ? static_cast<std::size_t>(product) : 0;
}

// Truncation toward zero; what does not fit (NaN too) gives INT32_MIN, as the processor's own conversion
// does.
constexpr std::int32_t toInt32(double value) {
  constexpr double limit = 2147483648.0;
  const bool fits = value > -limit - 1.0 && value < limit;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

}  // namespace lm
