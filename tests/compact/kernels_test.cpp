// Which kernels run on a processor of a level.
#include "compact/kernels.h"

#include <gtest/gtest.h>

#include "simd/cpu_level.h"

namespace {

using namespace lm::compact;
namespace level = simd::level;

#if defined(__x86_64__)

TEST(CompactKernels, AreTheHighestThatTheProcessorHas) {
  for (const int has : {level::none, level::sse2, level::ssse3}) {
    EXPECT_EQ(kernelsFor(has).learnRow, sse2::learnRow) << has;
    EXPECT_EQ(kernelsFor(has).seedRow, sse2::seedRow) << has;
  }
  for (const int has : {level::sse41, level::sse42, level::avx}) {
    EXPECT_EQ(kernelsFor(has).learnRow, sse41::learnRow) << has;
    EXPECT_EQ(kernelsFor(has).takeRow, sse41::takeRow) << has;
  }
  EXPECT_EQ(kernelsFor(level::avx2).learnRow, avx2::learnRow);
  EXPECT_EQ(kernelsFor(level::avx2).splitRow, avx2::splitRow);
}

#else

TEST(CompactKernels, AreTheSameOnEveryProcessorOfOtherArchitectures) {
  for (const int has : {level::none, level::avx2}) EXPECT_EQ(kernelsFor(has).learnRow, avx2::learnRow) << has;
}

#endif

}  // namespace
