// Finding the pixels to update: every version against the rules, pixel by pixel.
#include "tests/simd/model_kernels.h"

namespace {

struct ExpectedUpdate {
  std::vector<char> absorbed, lit, changed;
  std::vector<std::int32_t> timer;
  std::int64_t examined = 0;
};

ExpectedUpdate updateOf(const ModelScene& s, std::size_t count, const lm::UpdatePlanes& planes) {
  ExpectedUpdate e{std::vector<char>(count), std::vector<char>(count), std::vector<char>(count),
                   std::vector<std::int32_t>(s.timer.data(), s.timer.data() + count)};
  for (std::size_t i = 0; i < count; ++i) {
    if (s.roi[i] == 0) continue;
    e.timer[i] = e.timer[i] == INT_MIN ? INT_MAX : e.timer[i] - 1;
    e.absorbed[i] = planes.absorbing && s.absorbed[i] == 255;
    if (e.absorbed[i] != 0 || s.now[i] != 0) continue;
    if (planes.watchLight) ++e.examined;
    e.lit[i] = planes.watchLight && s.light[i] > planes.sameLight;
    e.changed[i] = s.difference[i] > planes.unchanged || s.before[i] != 0;
  }
  return e;
}

class FindUpdateWork : public VersionTest<lm::FindUpdateWorkFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, FindUpdateWork, ::testing::ValuesIn(lm::findUpdateWorkVersions),
                         VersionName());

TEST_P(FindUpdateWork, ListsWorkDecrementsTimersAndCountsBackground) {
  Random random;
  for (const std::size_t count : modelCounts) {
    for (const std::int32_t threshold : modelThresholds) {
      for (const int switches : {0, 1, 2, 3}) {
        const ModelScene s(count, random);
        const lm::UpdatePlanes planes{
            .roiMask = s.roi.data(),
            .rdDiff = s.difference.data(),
            .prevFgMask = s.before.data(),
            .fgMask = s.now.data(),
            .absorbMask = s.absorbed.data(),
            .illumDiff = s.light.data(),
            .updTimer = s.timer.data(),
            .unchanged = threshold,
            .sameLight = modelThresholds[random.next() % std::size(modelThresholds)],
            .absorbing = (switches & 1) != 0,
            .watchLight = (switches & 2) != 0};
        const ExpectedUpdate expected = updateOf(s, count, planes);
        ExpectedUpdate found{
            std::vector<char>(count), std::vector<char>(count), std::vector<char>(count), {}};
        const std::size_t room = 1 + random.next() % 4;
        for (std::size_t from = 0; from < count;) {
          std::vector<lm::UpdateBlock> blocks(room);
          const std::size_t size =
              GetParam().function(planes, from, count, blocks.data(), room, found.examined);
          ASSERT_TRUE(size == room || from >= count) << "stopped early";
          for (std::size_t b = 0; b < size; ++b) {
            const auto& [begin, work] = blocks[b];
            ASSERT_EQ(begin % 32, 0U);
            ASSERT_TRUE(work.any());
            for (std::size_t k = 0; k < 32 && begin + k < count; ++k) {
              found.absorbed[begin + k] = static_cast<char>(work.absorbed >> k & 1U);
              found.lit[begin + k] = static_cast<char>(work.lit >> k & 1U);
              found.changed[begin + k] = static_cast<char>(work.changed >> k & 1U);
            }
          }
        }
        ASSERT_EQ(found.absorbed, expected.absorbed);
        ASSERT_EQ(found.lit, expected.lit);
        ASSERT_EQ(found.changed, expected.changed);
        ASSERT_EQ(s.timer.values(), expected.timer);
        ASSERT_EQ(found.examined, expected.examined);
        ASSERT_EQ(s.timer.damage(), "");
      }
    }
  }
}

}  // namespace
