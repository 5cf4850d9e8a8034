// The numbers that rand() of the C library gives in a process that never seeds it: the additive feedback
// generator x^31 + x^3 + 1, seeded with 1. Each object has a sequence of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lm {

class LibraryRand {
 public:
  constexpr LibraryRand() {
    // Seeded by a Lehmer generator modulo 2^31 - 1.
    state_[0] = 1;
    for (std::size_t i = 1; i < degree; ++i) {
      state_[i] = static_cast<std::uint32_t>(std::uint64_t{state_[i - 1]} * 16807 % 2147483647);
    }
    for (std::size_t i = 0; i < 10 * degree; ++i) next();
  }

  // 0 to 2^31 - 1.
  constexpr std::int32_t next() {
    std::uint32_t& word = state_[at_];
    word += state_[(at_ + degree - separation) % degree];
    at_ = (at_ + 1) % degree;
    return static_cast<std::int32_t>(word >> 1);
  }

 private:
  static constexpr std::size_t degree = 31;
  static constexpr std::size_t separation = 3;

  std::array<std::uint32_t, degree> state_{};
  std::size_t at_ = separation;
};

}  // namespace lm
