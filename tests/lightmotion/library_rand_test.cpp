// The detector's own numbers are those of rand() in a fresh process.
#include "base/library_rand.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

TEST(LibraryRand, GivesWhatRandGivesInAFreshProcess) {
  constexpr int count = 20000;
  const std::string command = std::string(FRESH_RAND) + ' ' + std::to_string(count);
  std::FILE* numbers = popen(command.c_str(), "r");
  ASSERT_NE(numbers, nullptr);
  lm::LibraryRand random;
  for (int i = 0; i < count; ++i) {
    int expected = -1;
    ASSERT_EQ(std::fscanf(numbers, "%d", &expected), 1) << i;
    ASSERT_EQ(random.next(), expected) << i;
  }
  EXPECT_EQ(pclose(numbers), 0);
}

}  // namespace
