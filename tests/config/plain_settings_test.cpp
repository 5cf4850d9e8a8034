// Settings without an engine behave as the engine's own settings.
#include "config/settings.h"

#include <gtest/gtest.h>

#include "config/param_entry.h"
#include "engine/kamble.h"

namespace lm::test {
namespace {

template <typename Holder>
std::vector<double> valuesOf(const Holder& s) {
  return {double(s.szImgX),
          double(s.szImgY),
          double(s.frmChn),
          double(s.thrMatch),
          double(s.thrHeuris),
          double(s.thrIllum),
          double(s.minObjW),
          double(s.minObjH),
          double(s.lifeStatic),
          double(s.lifeStaticFrm),
          s.frmRate,
          double(s.autoSensitivity),
          double(s.ghostSuppression),
          double(s.illumChange),
          double(s.minMatchNum),
          double(s.numSegmentLock),
          double(s.numPeriodLock)};
}

TEST(PlainSettings, StartWithTheDefaultsOfTheEngine) {
  EXPECT_EQ(valuesOf(lm::Settings()), valuesOf(kAMBLE()));
}

class PlainSettings : public testing::TestWithParam<const char*> {};

TEST_P(PlainSettings, ChangeAsInTheEngine) {
  kAMBLE engine;
  lm::Settings settings;
  std::vector<std::string> entries = {GetParam()};
  std::vector<polygon> none;
  const bool accepted = engine.setParam(entries, none, none)[0];

  EntryScanner entry;
  ASSERT_TRUE(entry.scan(entries[0]));
  const auto* row = findParam<lm::Settings>(entry.key);
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(applyParam(*row, settings, convertParam(row->conversion, entry.value)), accepted);
  EXPECT_EQ(valuesOf(settings), valuesOf(engine));
}

// One accepted and one refused value of every key.
INSTANTIATE_TEST_SUITE_P(
    EveryKey, PlainSettings,
    testing::Values("frmW 7", "frmW 0", "frmH 9", "frmH -1", "frmChn 4", "frmChn 0", "sensitivity 2",
                    "sensitivity -1", "sensitivity 9", "lcAdap 5", "lcAdap 0", "minBoxW 0.25", "minBoxW 2",
                    "minBoxH 1", "minBoxH 0", "lifeStatic -2", "lifeStatic 5", "sensitivity_auto 1",
                    "sensitivity_auto 2", "GHOST_SUPPRESSION 0", "ILLUMINATION_CHANGE -1", "MIN_MATCH_NUM 20",
                    "MIN_MATCH_NUM 21", "MIN_MATCH_DIST 33", "MIN_MATCH_DIST 0", "THR_DIFF_HEURISTIC 0",
                    "THR_DIFF_HEURISTIC -1", "NUM_SEGMENT_LOCK 1", "NUM_SEGMENT_LOCK 0", "NUM_PERIOD_LOCK 5",
                    "NUM_PERIOD_LOCK 0", "MIN_BOUNDING_BOX_W 0.5", "MIN_BOUNDING_BOX_W 1.5",
                    "MIN_BOUNDING_BOX_H 0.5", "MIN_BOUNDING_BOX_H -1"));

}  // namespace
}  // namespace lm::test
