// What the kernel tests share: a fixture that skips versions above the processor's level, contents for
// arrays, and a sweep over lengths and offsets.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "tests/simd/versions.h"
#include "tests/support/guarded_buffer.h"

// One test for each version of a kernel.
template <class Function>
class VersionTest : public ::testing::TestWithParam<lm::Version<Function>> {
 protected:
  void SetUp() override {
    if (lm::isRunnable(this->GetParam())) return;
    GTEST_SKIP() << "this processor has level " << GetCpuInstructionSet() << ", " << this->GetParam()
                 << " needs " << this->GetParam().level;
  }
};

struct VersionName {
  template <class Info>
  std::string operator()(const Info& info) const {
    return info.param.name;
  }
};

// Contents of arrays, the same in every run.
class Filler {
 public:
  // Only these values occur; an empty list allows all.
  explicit Filler(const std::vector<std::uint8_t>& values = {});
  void operator()(const GuardedBuffer& array);

 private:
  std::vector<std::uint8_t> pool_;
  std::size_t next_ = 0;
};

// Values at which comparison, saturation and sign may fail.
inline const std::vector<std::uint8_t> extremes = {0, 1, 2, 253, 254, 255};

// A length, and the position of arrays of that length.
struct Placement {
  std::size_t length;
  std::size_t offset;  // of begin, from a multiple of 32
  GuardedBuffer::Against page;

  // Places an array of `size` bytes; the i-th array of a call gets a different offset.
  void put(GuardedBuffer& array, std::size_t size, std::size_t i = 0) const {
    array.place(size, (offset + i * 5) % 32, page);
  }
};

std::ostream& operator<<(std::ostream& stream, const Placement& at);

// Calls `body` for all lengths from 0 to 100 and two larger ones, at all offsets from 0 to 31, against both
// pages; stops at the first fatal failure.
constexpr std::size_t longestSwept = 4099;
template <class Body>
void forEveryPlacement(Body body) {
  for (std::size_t step = 0; step <= 102; ++step) {
    const std::size_t length = step == 102 ? longestSwept : step == 101 ? 1024 : step;
    for (std::size_t offset = 0; offset < 32; ++offset) {
      for (const auto page : {GuardedBuffer::Against::front, GuardedBuffer::Against::back}) {
        body(Placement{length, offset, page});
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

inline std::vector<std::uint8_t> copyOf(const GuardedBuffer& array) { return {array.begin(), array.end()}; }

// Empty if the array holds `expected` and nothing around it was written, else the first difference.
std::string mismatch(const GuardedBuffer& array, const std::vector<std::uint8_t>& expected);
