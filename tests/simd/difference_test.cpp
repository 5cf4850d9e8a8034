#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/simd/expected.h"
#include "tests/simd/sweep.h"

namespace {

class Difference : public VersionTest<simd::GenRdDiffFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, Difference, ::testing::ValuesIn(lm::genRdDiffVersions), VersionName());

// Two images and room for the difference of one of their channels.
class Images {
 public:
  explicit Images(std::size_t bytes) : a_(bytes), b_(bytes), out_(bytes) {}

  // Runs `version` on images of `total` bytes placed as in `at`. Empty if it did what the plain
  // implementation does and nothing else, else the first difference.
  std::string check(const lm::Version<simd::GenRdDiffFn>& version, const Placement& at, std::size_t total,
                    int width, int height, int channels, int channel, Filler& fill) {
    const auto first = static_cast<std::size_t>(channel);
    const auto step = static_cast<std::size_t>(channels);
    at.put(a_, total, 0);
    at.put(b_, total, 1);
    at.put(out_, total > first ? (total - first + step - 1) / step : 0, 2);
    fill(a_);
    fill(b_);
    fill(out_);
    const auto a = copyOf(a_);
    const auto b = copyOf(b_);
    auto model = copyOf(out_);
    expected::genRdDiff(a.data(), b.data(), model.data(), width, height, channels, channel);
    version.function(a_.begin(), b_.begin(), out_.begin(), width, height, channels, channel);
    if (const auto wrong = mismatch(out_, model); !wrong.empty()) return "out: " + wrong;
    if (!(mismatch(a_, a) + mismatch(b_, b)).empty()) return "an input image was changed";
    return {};
  }

 private:
  GuardedBuffer a_, b_, out_;
};

constexpr Placement atEnd{0, 0, GuardedBuffer::Against::back};

TEST_P(Difference, EqualsThePlainVersionForEveryChannelAtEveryLengthAndOffset) {
  Images images(longestSwept * 5);
  Filler fewValues(extremes);
  Filler allValues;
  forEveryPlacement([&](const Placement& at) {
    for (int channels = 1; channels <= 5; ++channels) {
      for (int channel = 0; channel <= channels; ++channel) {  // the last one is past the pixel
        Filler& fill = (at.length + at.offset) % 2 == 0 ? fewValues : allValues;
        ASSERT_EQ(images.check(GetParam(), at, at.length * static_cast<std::size_t>(channels),
                               static_cast<int>(at.length), 1, channels, channel, fill),
                  "")
            << at << " (pixels), channel " << channel << " of " << channels;
      }
    }
  });
}

TEST_P(Difference, EqualsThePlainVersionForWholeFrames) {
  Images images(8308);  // 67 x 31 pixels of 4 bytes
  Filler fill;
  for (const int channels : {1, 3, 4}) {
    for (const auto& [width, height] : {std::pair{64, 30}, {67, 31}, {1, 31}, {31, 1}, {16, 2}}) {
      for (int channel = 0; channel < channels; ++channel) {
        EXPECT_EQ(images.check(GetParam(), atEnd, static_cast<std::size_t>(width * height * channels), width,
                               height, channels, channel, fill),
                  "")
            << width << " x " << height << ", channel " << channel << " of " << channels;
      }
    }
  }
}

// All 65536 pairs of bytes, in whole blocks.
TEST_P(Difference, IsTheAbsoluteDifferenceOfEveryPairOfBytes) {
  std::vector<std::uint8_t> a(65536), b(65536), out(65536);
  for (std::size_t i = 0; i < a.size(); ++i) {
    a[i] = static_cast<std::uint8_t>(i / 256);
    b[i] = static_cast<std::uint8_t>(i % 256);
  }
  GetParam().function(a.data(), b.data(), out.data(), 256, 256, 1, 0);
  for (int i = 0; i < 65536; ++i) {
    ASSERT_EQ(out[static_cast<std::size_t>(i)], std::abs(i / 256 - i % 256)) << "pair " << i;
  }
}

// One block of 16 pixels and a remainder of one.
TEST_P(Difference, ThreeChannelFrameOfSeventeenPixelsForEachChannel) {
  std::vector<std::uint8_t> a(51), b(51, 100);
  for (std::uint8_t i = 0; i < 51; ++i) a[i] = 5 * i;
  for (int channel = 0; channel < 3; ++channel) {
    std::vector<std::uint8_t> out(17, 0xEE);
    GetParam().function(a.data(), b.data(), out.data(), 17, 1, 3, channel);
    for (int p = 0; p < 17; ++p) {
      // Byte 3p + channel is five times its index; the other image is 100 throughout.
      EXPECT_EQ(out[static_cast<std::size_t>(p)], std::abs(5 * (3 * p + channel) - 100)) << "pixel " << p;
    }
  }
}

TEST_P(Difference, FourChannelFrameGivesOneBytePerPixelOfTheThirdChannel) {
  std::vector<std::uint8_t> a(72), b(a.size());  // 6 x 3 pixels of 4 bytes
  for (std::size_t i = 0; i < a.size(); ++i) a[i] = static_cast<std::uint8_t>(i % 4 == 2 ? i : 255);
  std::vector<std::uint8_t> out(6 * 3 + 1, 0xEE);
  GetParam().function(a.data(), b.data(), out.data(), 6, 3, 4, 2);
  for (std::size_t p = 0; p < 18; ++p) EXPECT_EQ(out[p], 4 * p + 2);
  EXPECT_EQ(out[18], 0xEE);
}

TEST_P(Difference, WritesNothingWhenTheChannelIsNotBelowTheNumberOfBytes) {
  std::uint8_t out = 0xEE;
  GetParam().function(nullptr, nullptr, &out, 1, 1, 3, 3);
  GetParam().function(nullptr, nullptr, &out, 0, 0, 3, 0);
  GetParam().function(nullptr, nullptr, &out, -20, 1, 3, 0);
  EXPECT_EQ(out, 0xEE);
}

TEST_P(Difference, NoChannelsMeansNoPixels) {
  std::uint8_t out = 0xEE;
  GetParam().function(nullptr, nullptr, &out, 16, 16, 0, 0);
  GetParam().function(nullptr, nullptr, &out, -16, 16, -1, 0);
  EXPECT_EQ(out, 0xEE);
}

TEST_P(Difference, NumberOfBytesWrapsInThirtyTwoBits) {
  Images images(131073);
  Filler fill;
  // 65536 * 65536 = 2^32: no bytes.
  EXPECT_EQ(images.check(GetParam(), atEnd, 0, 65536, 65536, 1, 0, fill), "");
  // 65537 * 65537 = 2^32 + 2^17 + 1.
  EXPECT_EQ(images.check(GetParam(), atEnd, 131073, 65537, 65537, 1, 0, fill), "");
  // 1431655782 * 3 = 2^32 + 50: sixteen pixels of three bytes and two bytes of a seventeenth.
  for (int channel = 0; channel < 3; ++channel) {
    EXPECT_EQ(images.check(GetParam(), atEnd, 50, 1431655782, 1, 3, channel, fill), "")
        << "channel " << channel;
  }
  // 32768 * 65536 = 2^31, which is negative: no bytes.
  EXPECT_EQ(images.check(GetParam(), atEnd, 0, 32768, 65536, 1, 0, fill), "");
}

}  // namespace
