#include <gmock/gmock.h>

#include "tests/simd/versions.h"

namespace {

// Gives every test the state of a library that was just loaded.
class Dispatch : public ::testing::Test {
 protected:
  void SetUp() override { lm::kernels = {}; }
  void TearDown() override { lm::kernels = {}; }
};

TEST(KernelsFor, EveryLevelHasItsVersions) {
  using Names = std::vector<std::string>;
  const Names base = {"replace_if_u8_c", "genRdDiff_c", "pruneFgByRoi_c", "isMatchVal_bgr24_c", "isTouch_c"};
  const Names sse2 = {"replace_if_u8_sse2", "genRdDiff_c", "pruneFgByRoi_sse2", "isMatchVal_bgr24_c",
                      "isTouch_sse2"};
  const Names ssse3 = {"replace_if_u8_sse2", "genRdDiff_ssse3", "pruneFgByRoi_sse2", "isMatchVal_bgr24_ssse3",
                       "isTouch_sse2"};
  const Names sse41 = {"replace_if_u8_sse41", "genRdDiff_sse41", "pruneFgByRoi_sse41",
                       "isMatchVal_bgr24_sse41", "isTouch_sse2"};
  const Names avx2 = {"replace_if_u8_avx2", "genRdDiff_sse41", "pruneFgByRoi_avx2", "isMatchVal_bgr24_sse41",
                      "isTouch_sse2"};
  const Names expected[] = {base, base, sse2, sse2, ssse3, sse41, sse41, sse41, avx2};
  for (int level = 0; level <= 8; ++level)
    EXPECT_EQ(namesOf(lm::kernelsFor(level)), expected[level]) << level;
}

TEST(KernelsFor, NoVersionIsChosenBelowItsLevel) {
  for (int level = 0; level <= 8; ++level) {
    lm::forEachKernel([&](const char*, const auto& versions) {
      const auto& chosen = lm::versionFor(level, versions);
      EXPECT_LE(chosen.level, level) << chosen;
    });
  }
}

TEST_F(Dispatch, EveryPointerStartsAtItsDispatcher) {
  EXPECT_EQ(lm::kernels.replace, simd::detail::replace_if_u8_dispatch);
  EXPECT_EQ(lm::kernels.genRdDiff, simd::detail::gen_rd_diff_dispatch);
  EXPECT_EQ(lm::kernels.prune, simd::detail::prune_fg_by_roi_dispatch);
  EXPECT_EQ(lm::kernels.match, simd::detail::is_match_val_bgr24_dispatch);
  EXPECT_EQ(lm::kernels.touch, simd::detail::is_touch_dispatch);
}

// The first call of each entry point chooses the processor's version and gives its result.
TEST_F(Dispatch, FirstReplaceChoosesAndReplaces) {
  std::uint8_t bytes[] = {1, 2, 1};
  simd::replace_if_u8(bytes, bytes + 3, 1, 9);
  EXPECT_THAT(bytes, ::testing::ElementsAre(9, 2, 9));
  EXPECT_EQ(lm::kernels.replace, lm::kernelsFor(GetCpuInstructionSet()).replace);
}

TEST_F(Dispatch, FirstDifferenceChoosesAndSubtracts) {
  const std::uint8_t a[] = {1, 2, 30, 4, 5, 60};
  const std::uint8_t b[] = {0, 0, 40, 0, 0, 40};
  std::uint8_t out[2] = {};
  simd::genRdDiff(a, b, out, 1, 2, 3, 2);
  EXPECT_THAT(out, ::testing::ElementsAre(10, 20));
  EXPECT_EQ(lm::kernels.genRdDiff, lm::kernelsFor(GetCpuInstructionSet()).genRdDiff);
}

TEST_F(Dispatch, FirstPruneChoosesAndPrunes) {
  std::uint8_t mask[] = {255, 255};
  const std::uint8_t roi[] = {1, 0};
  simd::pruneFgByRoi(mask, roi, 2);
  EXPECT_THAT(mask, ::testing::ElementsAre(255, 0));
  EXPECT_EQ(lm::kernels.prune, lm::kernelsFor(GetCpuInstructionSet()).prune);
}

TEST_F(Dispatch, FirstTouchChoosesAndTests) {
  const std::vector<std::uint8_t> first(16, 255), second(16, 1);
  EXPECT_TRUE(simd::isTouch({0, 0, 16, 1}, first.data(), second.data(), 16, 1));
  EXPECT_EQ(lm::kernels.touch, lm::kernelsFor(GetCpuInstructionSet()).touch);
}

TEST_F(Dispatch, ThreeAndFourChannelMatchShareOneChoice) {
  const std::uint8_t pixel[] = {10, 20, 30, 0};
  const std::uint8_t sample[] = {11, 22, 33, 255};
  EXPECT_EQ(simd::isMatchVal_bgr32(pixel, sample, 3), 6);
  EXPECT_EQ(lm::kernels.match, lm::kernelsFor(GetCpuInstructionSet()).match);

  lm::kernels.match = [](const std::uint8_t*, const std::uint8_t*, int) { return 1234; };
  EXPECT_EQ(simd::isMatchVal_bgr24(pixel, sample, 3), 1234);
  EXPECT_EQ(simd::isMatchVal_bgr32(pixel, sample, 3), 1234);
}

TEST_F(Dispatch, ACallChoosesItsOwnKernelOnly) {
  const std::uint8_t pixel[] = {0, 0, 0};
  simd::isMatchVal_bgr24(pixel, pixel, 0);
  lm::kernels.match = simd::detail::is_match_val_bgr24_dispatch;
  EXPECT_EQ(namesOf(lm::kernels), std::vector<std::string>(5, "?"));
}

// After the first call the entry point calls the version directly: the choice is not repeated.
TEST_F(Dispatch, LaterCallsForwardTheirArgumentsUnchanged) {
  static std::vector<std::intptr_t> seen;
  static std::uint8_t a, b, c;
  const auto address = [](const void* p) { return reinterpret_cast<std::intptr_t>(p); };
  static const auto at = address;

  lm::kernels.replace = [](std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
    seen = {at(begin), at(end), from, to};
  };
  simd::replace_if_u8(&a, &b, 3, 4);
  EXPECT_THAT(seen, ::testing::ElementsAre(at(&a), at(&b), 3, 4));

  lm::kernels.genRdDiff = [](const std::uint8_t* x, const std::uint8_t* y, std::uint8_t* out, int width,
                             int height, int channels, int channel) {
    seen = {at(x), at(y), at(out), width, height, channels, channel};
  };
  simd::genRdDiff(&a, &b, &c, 1, 2, 3, 4);
  EXPECT_THAT(seen, ::testing::ElementsAre(at(&a), at(&b), at(&c), 1, 2, 3, 4));

  lm::kernels.prune = [](std::uint8_t* mask, const std::uint8_t* roi, int count) {
    seen = {at(mask), at(roi), count};
  };
  simd::pruneFgByRoi(&a, &b, -7);
  EXPECT_THAT(seen, ::testing::ElementsAre(at(&a), at(&b), -7));

  lm::kernels.match = [](const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
    seen = {at(pixel), at(sample), radius};
    return -5;
  };
  EXPECT_EQ(simd::isMatchVal_bgr24(&a, &b, -8), -5);
  EXPECT_THAT(seen, ::testing::ElementsAre(at(&a), at(&b), -8));

  lm::kernels.touch = [](std::tuple<int, int, int, int> box, const std::uint8_t* first,
                         const std::uint8_t* second, int stride, int height) {
    const auto [x, y, w, h] = box;
    seen = {x, y, w, h, at(first), at(second), stride, height};
    return true;
  };
  EXPECT_TRUE(simd::isTouch({1, 2, 3, 4}, &a, &b, 5, 6));
  EXPECT_THAT(seen, ::testing::ElementsAre(1, 2, 3, 4, at(&a), at(&b), 5, 6));
}

}  // namespace
