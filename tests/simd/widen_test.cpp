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
    const std::vector<std::uint32_t> widened(before.begin(), before.end());
    const auto* model = reinterpret_cast<const std::uint8_t*>(widened.data());
    ASSERT_EQ(mismatch(words, {model, model + words.size()}), "") << at;
    ASSERT_EQ(mismatch(bytes, before), "") << at;
  });
}

TEST(Widen, CountZeroTouchesNothing) { simd::cvt_u8_to_u32(nullptr, nullptr, 0); }

}  // namespace
