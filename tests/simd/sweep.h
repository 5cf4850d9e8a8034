// What the kernel tests share: a fixture that skips what the processor lacks, contents for arrays, and the
// sweep over lengths and offsets.
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
class VersionTest : public ::testing::TestWithParam<Version<Function>> {
 protected:
  void SetUp() override {
    if (this->GetParam().isRunnable()) return;
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

// Contents of arrays: the same ones in every run.
class Filler {
 public:
  // Only these values occur; none: every value.
  explicit Filler(const std::vector<std::uint8_t>& values = {});
  void operator()(const GuardedBuffer& array);

 private:
  std::vector<std::uint8_t> pool_;
  std::size_t next_ = 0;
};

// Where rules of comparison, saturation and sign go wrong.
inline const std::vector<std::uint8_t> extremes = {0, 1, 2, 253, 254, 255};

// A length, and where the arrays of that length lie.
struct Placement {
  std::size_t length;
  std::size_t offset;  // of begin, from a multiple of 32
  GuardedBuffer::Against page;

  // Places arrays of `size` bytes, the i-th array of a call with another offset than the first.
  void put(GuardedBuffer& array, std::size_t size, std::size_t i = 0) const {
    array.place(size, (offset + i * 5) % 32, page);
  }
};

std::ostream& operator<<(std::ostream& stream, const Placement& at);

// Calls `body` for all lengths from 0 to 100 and two of frame size, at all offsets from 0 to 31, against both
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

// Empty when the array holds `expected` and nothing around it was written, else what is wrong first.
std::string mismatch(const GuardedBuffer& array, const std::vector<std::uint8_t>& expected);
