// Taking a frame: every version against bytes computed one by one.
#include "tests/simd/model_kernels.h"

namespace {

std::uint8_t absoluteDifference(std::uint8_t a, std::uint8_t b) {
  return static_cast<std::uint8_t>(a > b ? a - b : b - a);
}

class TakeFrame : public VersionTest<lm::TakeFrameFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, TakeFrame, ::testing::ValuesIn(lm::takeFrameVersions), VersionName());

TEST_P(TakeFrame, CopiesTheFrameAndComparesOneChannel) {
  Random random;
  for (const std::size_t count : modelCounts) {
    for (const int channels : {1, 3, 4}) {
      for (int channel = 0; channel < std::min(channels, 3); ++channel) {
        // Bits: 1 computes rdDiff, 2 illumDiff; 4: the frame is not yet in curFrame; 8 is `keep`.
        for (const int wanted : {0, 1, 2, 3, 4, 7, 8, 11, 12, 15}) {
          const auto side = sideFor(count);
          const auto step = static_cast<std::size_t>(channels);
          const Plane<std::uint8_t> frame(count * step, side), current(count * step, side),
              previous(count * step, side), background(count * step, side), change(count, side),
              light(count, side);
          for (std::size_t i = 0; i < count * step; ++i) {
            frame[i] = random.byte();
            current[i] = random.byte();
            previous[i] = random.byte();
            background[i] = random.byte();
          }
          for (std::size_t i = 0; i < count; ++i) change[i] = light[i] = 99;
          const std::size_t begin = count / 3;
          const std::size_t end = count - count / 5;
          std::vector<std::uint8_t> copied = current.values(), changes = change.values(),
                                    lights = light.values(), kept = previous.values();
          for (std::size_t i = begin; i < end; ++i) {
            for (std::size_t c = 0; c < step; ++c) {
              if ((wanted & 4) != 0) copied[i * step + c] = frame[i * step + c];
            }
            const std::size_t at = i * step + static_cast<std::size_t>(channel);
            if ((wanted & 1) != 0) changes[i] = absoluteDifference(previous[at], copied[at]);
            for (std::size_t c = 0; c < step; ++c) {
              if ((wanted & 8) != 0) kept[i * step + c] = copied[i * step + c];
            }
            if ((wanted & 2) != 0) lights[i] = absoluteDifference(background[at], copied[at]);
          }
          GetParam().function({.frame = (wanted & 4) != 0 ? frame.data() : nullptr,
                               .curFrame = current.data(),
                               .prevFrame = previous.data(),
                               .bgImg = background.data(),
                               .rdDiff = (wanted & 1) != 0 ? change.data() : nullptr,
                               .illumDiff = (wanted & 2) != 0 ? light.data() : nullptr,
                               .channels = channels,
                               .channel = channel,
                               .keep = (wanted & 8) != 0},
                              begin, end);
          ASSERT_EQ(current.values(), copied) << count << " pixels of " << channels << ", bits " << wanted;
          ASSERT_EQ(previous.values(), kept) << count << " pixels of " << channels << ", bits " << wanted;
          ASSERT_EQ(change.values(), changes)
              << count << " pixels of " << channels << ", channel " << channel;
          ASSERT_EQ(light.values(), lights) << count << " pixels of " << channels << ", channel " << channel;
          ASSERT_EQ(current.damage() + change.damage() + light.damage(), "");
        }
      }
    }
  }
}

}  // namespace
