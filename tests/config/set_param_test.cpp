// The table of keys: what each accepts and what it writes.
#include <gmock/gmock.h>

#include "engine/kamble.h"
#include "tests/config/settings.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<bool> apply(kAMBLE& engine, std::vector<std::string> entries) {
  std::vector<polygon> none;
  std::vector<bool> flags;
  const Printed printed = printedBy([&] { flags = engine.setParam(entries, none, none); });
  EXPECT_EQ(printed, Printed{});
  return flags;
}

struct Row {
  std::string entry;
  bool accepted;
  Settings changes;  // compared with a new engine
};

void check(const std::vector<Row>& rows) {
  for (const auto& [entry, accepted, changes] : rows) {
    kAMBLE engine;
    EXPECT_THAT(apply(engine, {entry}), ElementsAre(accepted)) << entry;
    EXPECT_EQ(settingsOf(engine), defaultsExcept(changes)) << entry;
  }
}

class SetParam : public ::testing::Test {
 protected:
  SetParam() { hostLog().clear(); }
  ~SetParam() override { EXPECT_THAT(hostLog(), IsEmpty()); }
};

TEST_F(SetParam, FrameSizesAreAcceptedFrom1) {
  check({
      {"frmW 1", true, {{"szImgX", 1}}},
      {"frmW 2147483647", true, {{"szImgX", 2147483647}}},
      {"frmW 0", false, {}},
      {"frmW -1", false, {}},
      {"frmH 1", true, {{"szImgY", 1}}},
      {"frmH 2147483647", true, {{"szImgY", 2147483647}}},
      {"frmH 0", false, {}},
      {"frmH -1", false, {}},
      {"frmChn 1", true, {{"frmChn", 1}}},
      {"frmChn 7", true, {{"frmChn", 7}}},
      {"frmChn 0", false, {}},
      {"frmChn -3", false, {}},
  });
}

TEST_F(SetParam, SensitivityLevelsSetBothThresholds) {
  check({
      {"sensitivity 1", true, {{"thrMatch", 20}, {"thrHeuris", 18}}},
      {"sensitivity 2", true, {{"thrMatch", 17}, {"thrHeuris", 15}}},
      {"sensitivity 3", true, {{"thrMatch", 13}, {"thrHeuris", 12}}},
      {"sensitivity 4", true, {{"thrMatch", 9}, {"thrHeuris", 11}}},
      {"sensitivity 5", true, {{"thrMatch", 7}, {"thrHeuris", 10}}},
  });
}

TEST_F(SetParam, AnyOtherSensitivityFallsBackToLevel3AndIsNotAccepted) {
  for (const std::string value : {"0", "6", "-2", "2147483647", "-2147483648"}) {
    check({{"sensitivity " + value, false, {{"thrMatch", 13}, {"thrHeuris", 12}}}});
  }
}

TEST_F(SetParam, AdaptationLevelsSetTheIlluminationThreshold) {
  check({
      {"lcAdap 1", true, {{"thrIllum", 20}}},
      {"lcAdap 2", true, {{"thrIllum", 15}}},
      {"lcAdap 3", true, {{"thrIllum", 10}}},
      {"lcAdap 4", true, {{"thrIllum", 5}}},
      {"lcAdap 5", true, {{"thrIllum", 2}}},
  });
}

TEST_F(SetParam, AnyOtherAdaptationFallsBackTo10AndIsNotAccepted) {
  for (const std::string value : {"0", "6", "9", "-1"})
    check({{"lcAdap " + value, false, {{"thrIllum", 10}}}});
}

TEST_F(SetParam, MinimumBoxSizesAreFractionsAbove0AndUpTo1) {
  const std::vector<std::pair<std::string, std::string>> keys = {{"minBoxW", "minObjW"},
                                                                 {"minBoxH", "minObjH"},
                                                                 {"MIN_BOUNDING_BOX_W", "minObjW"},
                                                                 {"MIN_BOUNDING_BOX_H", "minObjH"}};
  for (const auto& [key, field] : keys) {
    check({
        {key + " 1", true, {{field, 1.0}}},
        {key + " 0.25", true, {{field, 0.25}}},
        {key + " 1.00000001", true, {{field, 1.0}}},  // 1 as a 32-bit float
        {key + " 1e-30", true, {{field, static_cast<double>(1e-30F)}}},
        {key + " 0.5px", true, {{field, 0.5}}},
        {key + " 1.01", false, {}},
        {key + " 0", false, {}},
        {key + " -0.25", false, {}},
        {key + " inf", false, {}},
    });
  }
}

TEST_F(SetParam, NotANumberIsOutOfEveryRange) {
  for (const std::string key : {"minBoxW", "minBoxH", "MIN_BOUNDING_BOX_W", "MIN_BOUNDING_BOX_H"}) {
    check({{key + " nan", false, {}}, {key + " -nan", false, {}}});
  }
}

TEST_F(SetParam, APositiveLifeStaticIsRefusedAndZeroOrLessIsStoredWithItsFrames) {
  check({
      {"lifeStatic 5", false, {}},
      {"lifeStatic 1", false, {}},
      {"lifeStatic 0", true, {{"lifeStatic", 0}, {"lifeStaticFrm", 0}}},
      {"lifeStatic -1", true, {{"lifeStatic", -1}, {"lifeStaticFrm", -30}}},
      {"lifeStatic -2", true, {{"lifeStatic", -2}, {"lifeStaticFrm", -60}}},
  });
}

TEST_F(SetParam, LifeInFramesOutOfIntRangeBecomesTheSmallestInt) {
  check({
      {"lifeStatic -71582788", true, {{"lifeStatic", -71582788}, {"lifeStaticFrm", -2147483640}}},
      {"lifeStatic -71582789", true, {{"lifeStatic", -71582789}, {"lifeStaticFrm", INT32_MIN}}},
      {"lifeStatic -2000000000", true, {{"lifeStatic", -2000000000}, {"lifeStaticFrm", INT32_MIN}}},
  });
}

TEST_F(SetParam, LifeInFramesFollowsTheCurrentRateAndIsTruncatedTowardZero) {
  kAMBLE engine;
  engine.frmRate = 12.5;
  EXPECT_THAT(apply(engine, {"lifeStatic -3"}), ElementsAre(true));
  EXPECT_EQ(engine.lifeStaticFrm, -37);  // -37.5
}

TEST_F(SetParam, SensitivityAutoWritesTheThresholdsOnly) {
  kAMBLE engine;
  apply(engine, {"sensitivity 1"});
  EXPECT_THAT(apply(engine, {"sensitivity_auto 1"}), ElementsAre(true));
  EXPECT_EQ(settingsOf(engine), defaultsExcept({{"thrMatch", 7}, {"thrHeuris", 10}}));
  for (const std::string value : {"0", "2", "-1"}) check({{"sensitivity_auto " + value, false, {}}});
}

TEST_F(SetParam, SwitchesAreOnForPositiveNumbersAndOffForAllOthers) {
  for (const auto& [key, field] :
       {std::pair<std::string, std::string>{"GHOST_SUPPRESSION", "ghostSuppression"},
        std::pair<std::string, std::string>{"ILLUMINATION_CHANGE", "illumChange"}}) {
    check({{key + " 0", true, {{field, 0}}}, {key + " -3", true, {{field, 0}}}});
    for (const std::string on : {"1", "2"}) {
      kAMBLE engine;
      EXPECT_THAT(apply(engine, {key + " 0", key + " " + on}), ElementsAre(true, true));
      EXPECT_EQ(settingsOf(engine), defaultsExcept({}));
    }
  }
}

TEST_F(SetParam, ModelAndLockSettingsHaveTheirRanges) {
  check({
      {"MIN_MATCH_NUM 1", true, {{"minMatchNum", 1}}},
      {"MIN_MATCH_NUM 20", true, {{"minMatchNum", 20}}},
      {"MIN_MATCH_NUM 0", false, {}},
      {"MIN_MATCH_NUM 21", false, {}},
      {"MIN_MATCH_DIST 1", true, {{"thrMatch", 1}}},
      {"MIN_MATCH_DIST 2147483647", true, {{"thrMatch", 2147483647}}},
      {"MIN_MATCH_DIST 0", false, {}},
      {"THR_DIFF_HEURISTIC 0", true, {{"thrHeuris", 0}}},
      {"THR_DIFF_HEURISTIC 2147483647", true, {{"thrHeuris", 2147483647}}},
      {"THR_DIFF_HEURISTIC -1", false, {}},
      {"NUM_SEGMENT_LOCK 1", true, {{"numSegmentLock", 1}}},
      {"NUM_SEGMENT_LOCK 20", true, {{"numSegmentLock", 20}}},
      {"NUM_SEGMENT_LOCK 0", false, {}},
      {"NUM_SEGMENT_LOCK 21", false, {}},
      {"NUM_PERIOD_LOCK 1", true, {{"numPeriodLock", 1}}},
      {"NUM_PERIOD_LOCK 2147483647", true, {{"numPeriodLock", 2147483647}}},
      {"NUM_PERIOD_LOCK 0", false, {}},
  });
}

TEST_F(SetParam, WholeNumbersEndAtTheFirstOtherCharacter) {
  check({
      {"frmW 12px", true, {{"szImgX", 12}}},
      {"frmW 2.9", true, {{"szImgX", 2}}},
      {"frmW +3", true, {{"szImgX", 3}}},
      {"frmW 0x10", false, {}},
      {"sensitivity 1e1", true, {{"thrMatch", 20}, {"thrHeuris", 18}}},
  });
}

TEST_F(SetParam, UnknownKeysAreIgnoredAndTheirValuesNotConverted) {
  for (const std::string key : {"maxBoxW", "maxBoxH", "FRMW", "frmw", "Sensitivity", "frmW2", "frm",
                                "ghost_suppression", "thrMatch", "roi"}) {
    check({{key + " 1", false, {}}, {key + " x", false, {}}});
  }
}

TEST_F(SetParam, ThereIsOneFlagForEveryEntryInOrder) {
  kAMBLE engine;
  EXPECT_THAT(apply(engine, {"frmW 4", "maxBoxW 1", "frmH 0", "frmH 2", "sensitivity 9", "lcAdap 1"}),
              ElementsAre(true, false, false, true, false, true));
  EXPECT_THAT(apply(engine, {}), IsEmpty());
}

TEST_F(SetParam, TheLastEntryForAFieldWins) {
  struct Case {
    std::vector<std::string> entries;
    Settings changes;
  };
  const std::vector<Case> cases = {
      {{"frmW 3", "frmW 4"}, {{"szImgX", 4}}},
      {{"frmW 3", "frmW 0"}, {{"szImgX", 3}}},
      {{"MIN_MATCH_DIST 33", "sensitivity 1"}, {{"thrMatch", 20}, {"thrHeuris", 18}}},
      {{"sensitivity 1", "MIN_MATCH_DIST 33"}, {{"thrMatch", 33}, {"thrHeuris", 18}}},
      {{"sensitivity 1", "THR_DIFF_HEURISTIC 1"}, {{"thrMatch", 20}, {"thrHeuris", 1}}},
      {{"sensitivity 1", "sensitivity_auto 1"}, {{"thrMatch", 7}, {"thrHeuris", 10}}},
      {{"sensitivity_auto 1", "sensitivity 0"}, {{"thrMatch", 13}, {"thrHeuris", 12}}},
      {{"minBoxW 0.5", "MIN_BOUNDING_BOX_W 0.25"}, {{"minObjW", 0.25}}},
      {{"MIN_BOUNDING_BOX_H 0.25", "minBoxH 0.5"}, {{"minObjH", 0.5}}},
      {{"lcAdap 5", "lcAdap 9"}, {{"thrIllum", 10}}},
  };
  for (const auto& [entries, changes] : cases) {
    kAMBLE engine;
    apply(engine, entries);
    EXPECT_EQ(settingsOf(engine), defaultsExcept(changes)) << entries[0] << ", " << entries[1];
  }
}

// ---- automatic sensitivity ----------------------------------------------------------------------

const LogCall autoLine{"/Kdbglog/.nera_motion_log/.md.log", 10485760, "enable AUTO sensitivity"};

class AutomaticSensitivity : public ::testing::Test {
 protected:
  AutomaticSensitivity() { hostLog().clear(); }
};

TEST_F(AutomaticSensitivity, IsEnabledByMinus1AndWrittenToTheHostsLog) {
  check({{"sensitivity -1", true, {{"thrMatch", 7}, {"thrHeuris", 10}, {"autoSensitivity", 1}}}});
  EXPECT_THAT(hostLog(), ElementsAre(autoLine));
}

TEST_F(AutomaticSensitivity, StaysOnWhenALaterEntrySetsALevel) {
  kAMBLE engine;
  EXPECT_THAT(apply(engine, {"sensitivity -1", "sensitivity 2"}), ElementsAre(true, true));
  EXPECT_EQ(settingsOf(engine),
            defaultsExcept({{"thrMatch", 17}, {"thrHeuris", 15}, {"autoSensitivity", 1}}));
  EXPECT_THAT(apply(engine, {"sensitivity_auto 1", "sensitivity 0"}), ElementsAre(true, false));
  EXPECT_TRUE(engine.autoSensitivity);
  EXPECT_THAT(hostLog(), ElementsAre(autoLine));
}

TEST_F(AutomaticSensitivity, IsLoggedEveryTimeItIsEnabled) {
  kAMBLE engine;
  apply(engine, {"sensitivity -1", "sensitivity -1"});
  EXPECT_THAT(hostLog(), ElementsAre(autoLine, autoLine));
}

}  // namespace
}  // namespace lm::test
