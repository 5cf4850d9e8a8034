// A fixed generator of 64-bit numbers (xorshift64*), so that the input is the same everywhere.
#pragma once

#include <cstdint>

namespace lm::bench {

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15U + 1) {}

  std::uint64_t next() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return state_ * 0x2545F4914F6CDD1DU;
  }
  // 0 to `limit` - 1, for limits far below 2^32.
  int below(int limit) { return static_cast<int>((next() >> 32) * static_cast<std::uint64_t>(limit) >> 32); }

 private:
  std::uint64_t state_;
};

}  // namespace lm::bench
