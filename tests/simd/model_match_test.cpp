// Matching pixels with their samples: every version against a plain comparison, slot by slot.
#include <cstdlib>

#include "tests/simd/model_kernels.h"

namespace {

struct Expected {
  bool enough;
  std::uint32_t distance;
};

// Compares a pixel with its samples, slot by slot.
Expected compareSlots(const lm::MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* pixel) {
  std::uint32_t nearest = 999;
  int matches = 0;
  for (int slot = 0; slot < 20; ++slot) {
    int sum = 0;
    bool within = true;
    for (int c = 0; c < std::min(3, rule.channels); ++c) {
      const int d = std::abs(pixel[c] - samples[4 * slot + c]);
      within = within && d <= rule.radius;
      sum += d;
    }
    if (within) {
      ++matches;
      nearest = std::min(nearest, static_cast<std::uint32_t>(sum));
    }
    if ((within || rule.channels == 1) && matches >= rule.needed) return {true, nearest};
  }
  return {false, nearest};
}

class MatchBlock : public VersionTest<lm::MatchBlockFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, MatchBlock, ::testing::ValuesIn(lm::matchBlockVersions),
                         VersionName());

TEST_P(MatchBlock, ComparesSamplesInOrderUntilEnoughMatch) {
  Random random;
  for (const std::int32_t channels : {1, 3, 4}) {
    for (const std::int32_t radius : {-1, 0, 7, 20, 254, 255, INT_MAX}) {
      for (const std::int32_t needed : {-1, 0, 1, 2, 3, 9, 20, 21}) {
        const lm::MatchRule rule{.channels = channels, .radius = radius, .needed = needed};
        Plane<std::uint8_t> samples(32 * 80, GuardedBuffer::Against::back);
        Plane<std::uint8_t> pixels(32 * static_cast<std::size_t>(channels), GuardedBuffer::Against::back);
        Plane<std::uint32_t> distances(32, GuardedBuffer::Against::back);
        for (std::size_t i = 0; i < 32 * static_cast<std::size_t>(channels); ++i) {
          pixels[i] = random.byte();
        }
        for (std::size_t i = 0; i < 32 * 80; ++i) {
          const auto channel = static_cast<std::int32_t>(i % 4);
          const std::size_t pixel = i / 80 * static_cast<std::size_t>(channels);
          const int near = channel < channels ? pixels[pixel + static_cast<std::size_t>(channel)] : 0;
          const int shift = static_cast<int>(random.next() % 49) - 24;
          samples[i] = static_cast<std::uint8_t>(random.next() % 3 == 0 ? random.next()
                                                                        : std::clamp(near + shift, 0, 255));
        }
        const std::uint32_t wanted = random.bits();
        std::fill_n(distances.data(), 32, 77U);
        const std::uint32_t enough =
            GetParam().function(rule, samples.data(), pixels.data(), wanted, distances.data());
        for (std::uint32_t k = 0; k < 32; ++k) {
          const Expected expected =
              (wanted >> k & 1U) == 0
                  ? Expected{false, 77}
                  : compareSlots(rule, samples.data() + 80 * std::size_t{k},
                                 pixels.data() + std::size_t{k} * static_cast<std::size_t>(channels));
          ASSERT_EQ((enough >> k & 1U) != 0, expected.enough)
              << "pixel " << k << ", " << channels << " channels, radius " << radius << ", needed " << needed;
          ASSERT_EQ(distances[k], expected.distance)
              << "pixel " << k << ", " << channels << " channels, radius " << radius << ", needed " << needed;
        }
      }
    }
  }
}

}  // namespace
