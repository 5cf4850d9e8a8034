// The guarded buffer detects reads and writes outside its array.
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

namespace {

using Against = GuardedBuffer::Against;

void readAt(const std::uint8_t* p) { static_cast<void>(*static_cast<const volatile std::uint8_t*>(p)); }

TEST(GuardedBuffer, PlacesArraysAtTheRequestedOffset) {
  GuardedBuffer array(100);
  for (const auto page : {Against::front, Against::back}) {
    for (std::size_t offset = 0; offset < 32; ++offset) {
      array.place(100, offset, page);
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(array.begin()) % 32, offset);
      EXPECT_EQ(array.end() - array.begin(), 100);
    }
  }
}

TEST(GuardedBufferDeathTest, ReadingPastEitherPageCrashes) {
  GuardedBuffer array(100);
  array.place(100, 0, Against::front);
  EXPECT_DEATH(readAt(array.begin() - 1), "");
  array.place(100, (32 - 100 % 32) % 32, Against::back);
  EXPECT_DEATH(readAt(array.end()), "");
}

TEST(GuardedBuffer, ReportsTheSideThatWasWritten) {
  GuardedBuffer array(100);
  array.place(50, 5, Against::front);
  EXPECT_EQ(array.damage(), "");
  ++array.begin()[-2];
  EXPECT_EQ(array.damage(), "byte 2 before the array");
  array.place(50, 5, Against::back);
  EXPECT_EQ(array.damage(), "");
  ++array.end()[0];
  EXPECT_EQ(array.damage(), "byte 1 after the array");
}

}  // namespace
