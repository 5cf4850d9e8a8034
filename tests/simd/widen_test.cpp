#include <gtest/gtest.h>

#include "tests/simd/sweep.h"

namespace {

TEST(Widen, GivesEveryByteAsAWordAtEveryLengthAndOffset) {
  GuardedBuffer bytes(longestSwept);
  GuardedBuffer words(longestSwept * 4);
  Filler fill;
  forEveryPlacement([&](const Placement& at) {
    at.put(bytes, at.length);
    words.place(at.length * 4, at.offset / 4 * 4, at.page);
    fill(bytes);
    const auto before = copyOf(bytes);
    simd::cvt_u8_to_u32(bytes.begin(), reinterpret_cast<std::uint32_t*>(words.begin()), at.length);
    std::vector<std::uint8_t> model;  // little-endian words
    for (const auto byte : before) model.insert(model.end(), {byte, 0, 0, 0});
    ASSERT_EQ(mismatch(words, model), "") << at;
    ASSERT_EQ(mismatch(bytes, before), "") << at;
  });
}

TEST(Widen, CountZeroTouchesNothing) { simd::cvt_u8_to_u32(nullptr, nullptr, 0); }

}  // namespace
