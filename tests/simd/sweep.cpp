#include "tests/simd/sweep.h"

#include <random>

Filler::Filler(const std::vector<std::uint8_t>& values) : pool_(1U << 16U) {
  // Seeded by the values, so that fillers with different values are independent of each other.
  std::seed_seq seed(values.begin(), values.end());
  std::mt19937 random(seed);
  for (auto& byte : pool_) {
    const auto number = random();
    byte = static_cast<std::uint8_t>(values.empty() ? number >> 24U : values[number % values.size()]);
  }
}

void Filler::operator()(const GuardedBuffer& array) {
  for (std::size_t i = 0; i < array.size(); ++i) array.begin()[i] = pool_[next_++ % pool_.size()];
}

std::ostream& operator<<(std::ostream& stream, const Placement& at) {
  return stream << "length " << at.length << ", offset " << at.offset << ", against the "
                << (at.page == GuardedBuffer::Against::front ? "front" : "back") << " page";
}

std::string mismatch(const GuardedBuffer& array, const std::vector<std::uint8_t>& expected) {
  if (array.size() != expected.size()) return "sizes differ";
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (array.begin()[i] == expected[i]) continue;
    return "byte " + std::to_string(i) + " is " + std::to_string(array.begin()[i]) + " instead of " +
           std::to_string(expected[i]);
  }
  return array.damage();
}
