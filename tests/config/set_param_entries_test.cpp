// How an entry is split into key and value, and the state after a value that cannot be converted.
#include <gmock/gmock.h>

#include "engine/kamble.h"
#include "tests/config/settings.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

using ::testing::ElementsAre;

std::vector<bool> apply(kAMBLE& engine, std::vector<std::string> entries) {
  std::vector<polygon> none;
  return engine.setParam(entries, none, none);
}

std::string thrownApplying(kAMBLE& engine, const std::vector<std::string>& entries) {
  return thrownBy([&] { apply(engine, entries); });
}

// The frame width of a new engine after the entries.
int widthAfter(const std::vector<std::string>& entries) {
  kAMBLE engine;
  apply(engine, entries);
  return engine.szImgX;
}

// ---- key and value ------------------------------------------------------------------------------

TEST(Entries, AnyWhiteSpaceSeparatesKeyAndValue) {
  for (const std::string space : {" ", "  ", "\t", " \t\t ", "\n", "\r\n", "\v", "\f"}) {
    EXPECT_EQ(widthAfter({"frmW" + space + "640"}), 640);
    EXPECT_EQ(widthAfter({space + "frmW" + space + "640" + space}), 640);
  }
}

TEST(Entries, WhatFollowsTheValueIsIgnored) {
  EXPECT_EQ(widthAfter({"frmW 640 480 frmH 3"}), 640);
  EXPECT_EQ(widthAfter({"frmW 640\t480"}), 640);
}

TEST(Entries, AnEntryEndsAtItsFirstNul) {
  EXPECT_EQ(widthAfter({std::string("frmW 640\0"
                                    "7",
                                    10)}),
            640);
  EXPECT_EQ(widthAfter({"frmH 480", std::string("frmW\0 640", 9)}), 480);
  EXPECT_EQ(widthAfter({"frmW 480", std::string("\0frmW 640", 9)}), 480);
}

TEST(Entries, AKeyWithoutAValueTakesTheValueOfThePreviousEntry) {
  kAMBLE engine;
  EXPECT_THAT(apply(engine, {"frmH 480", "frmW"}), ElementsAre(true, true));
  EXPECT_EQ(settingsOf(engine), defaultsExcept({{"szImgX", 480}, {"szImgY", 480}}));
}

TEST(Entries, AValueOfAnIgnoredOrRefusedEntryIsReusedToo) {
  EXPECT_EQ(widthAfter({"maxBoxW 77", "frmW"}), 77);
  EXPECT_EQ(widthAfter({"NUM_SEGMENT_LOCK 99", "frmW\t"}), 99);
}

TEST(Entries, AnEmptyEntryRepeatsThePreviousEntry) {
  for (const std::string empty : {"", " ", "\t \n"}) {
    kAMBLE engine;
    EXPECT_THAT(apply(engine, {"frmH 480", "frmW", empty}), ElementsAre(true, true, true));
    EXPECT_EQ(engine.szImgX, 480);
    EXPECT_THAT(apply(engine, {"sensitivity 9", empty}), ElementsAre(false, false));
    EXPECT_THAT(apply(engine, {"maxBoxW 1", empty}), ElementsAre(false, false));
  }
}

TEST(Entries, AnEmptyEntryAfterAKeyAloneRepeatsThatKeyWithTheValueItTook) {
  kAMBLE engine;
  EXPECT_THAT(apply(engine, {"frmW 12", "MIN_MATCH_NUM", ""}), ElementsAre(true, true, true));
  EXPECT_EQ(settingsOf(engine), defaultsExcept({{"szImgX", 12}, {"minMatchNum", 12}}));
}

TEST(Entries, AnEmptyFirstEntryIsIgnored) {
  for (const std::string empty : {"", "  \t"}) {
    kAMBLE engine;
    EXPECT_THAT(apply(engine, {empty, "frmW 3"}), ElementsAre(false, true));
    EXPECT_EQ(settingsOf(engine), defaultsExcept({{"szImgX", 3}}));
  }
}

TEST(Entries, AFirstKeyWithoutAValueHasNoNumber) {
  kAMBLE engine;
  EXPECT_EQ(thrownApplying(engine, {"frmW"}), "std::invalid_argument: stoi");
  EXPECT_EQ(thrownApplying(engine, {"minBoxW "}), "std::invalid_argument: stof");
  EXPECT_THAT(apply(engine, {"maxBoxW"}), ElementsAre(false));
}

TEST(Entries, NothingIsKeptFromOneCallToTheNext) {
  kAMBLE engine;
  apply(engine, {"frmH 480"});
  EXPECT_EQ(thrownApplying(engine, {"frmW"}), "std::invalid_argument: stoi");
  EXPECT_THAT(apply(engine, {""}), ElementsAre(false));
}

TEST(Entries, KeysOfAnyLengthAreSafeAndIgnored) {
  for (const std::size_t length : {60U, 63U, 64U, 65U, 72U, 200U, 100000U}) {
    kAMBLE engine;
    const std::string tail(length, 'W');
    EXPECT_THAT(apply(engine, {tail + " 1", "frm" + tail + " 2", "frmW 3"}), ElementsAre(false, false, true));
    EXPECT_EQ(settingsOf(engine), defaultsExcept({{"szImgX", 3}}));
  }
}

TEST(Entries, ValuesOfAnyLengthAreReadCompletely) {
  for (const std::size_t length : {70U, 71U, 72U, 73U, 200U, 100000U}) {
    const std::string zeros(length, '0');
    kAMBLE engine;
    EXPECT_THAT(apply(engine, {"frmW " + zeros + "7", "frmH", "minBoxW 0.5" + zeros,
                               "frmChn 7" + std::string(length, 'x')}),
                ElementsAre(true, true, true, true));
    EXPECT_EQ(settingsOf(engine),
              defaultsExcept({{"szImgX", 7}, {"szImgY", 7}, {"minObjW", 0.5}, {"frmChn", 7}}));
    EXPECT_EQ(thrownApplying(engine, {"frmW 1" + zeros}), "std::out_of_range: stoi");
  }
}

TEST(Entries, WhiteSpaceOfAnyLengthIsSkipped) {
  const std::string space(100000, ' ');
  EXPECT_EQ(widthAfter({space + "frmW" + space + "640" + space}), 640);
}

// ---- values that cannot be converted ------------------------------------------------------------

const std::vector<std::string> wholeKeys = {"frmW",
                                            "frmH",
                                            "frmChn",
                                            "sensitivity",
                                            "lcAdap",
                                            "lifeStatic",
                                            "sensitivity_auto",
                                            "GHOST_SUPPRESSION",
                                            "ILLUMINATION_CHANGE",
                                            "MIN_MATCH_NUM",
                                            "MIN_MATCH_DIST",
                                            "THR_DIFF_HEURISTIC",
                                            "NUM_SEGMENT_LOCK",
                                            "NUM_PERIOD_LOCK"};
const std::vector<std::string> fractionKeys = {"minBoxW", "minBoxH", "MIN_BOUNDING_BOX_W",
                                               "MIN_BOUNDING_BOX_H"};

void expectThrowing(const std::vector<std::string>& keys, const std::vector<std::string>& values,
                    const std::string& expected) {
  for (const std::string& key : keys) {
    for (const std::string& value : values) {
      kAMBLE engine;
      EXPECT_EQ(thrownApplying(engine, {key + " " + value}), expected) << key << ' ' << value;
      EXPECT_EQ(settingsOf(engine), defaultsExcept({})) << key << ' ' << value;
    }
  }
}

TEST(Entries, AValueWithoutANumberThrowsAndChangesNothing) {
  expectThrowing(wholeKeys, {"abc", "-", ".5", "nan", "px12"}, "std::invalid_argument: stoi");
  expectThrowing(fractionKeys, {"x", "-", ".", "px0.5"}, "std::invalid_argument: stof");
}

TEST(Entries, ANumberOutOfRangeThrowsAndChangesNothing) {
  expectThrowing(wholeKeys, {"2147483648", "-2147483649", "99999999999999999999999"},
                 "std::out_of_range: stoi");
  expectThrowing(fractionKeys, {"1e39", "-1e39", "1e-60"}, "std::out_of_range: stof");
}

TEST(Entries, EntriesBeforeABadValueStayAppliedAndLaterOnesAreNotRead) {
  kAMBLE engine;
  EXPECT_EQ(thrownApplying(engine, {"frmW 3", "sensitivity 2", "frmH x", "frmChn 3"}),
            "std::invalid_argument: stoi");
  EXPECT_EQ(settingsOf(engine), defaultsExcept({{"szImgX", 3}, {"thrMatch", 17}, {"thrHeuris", 15}}));
}

}  // namespace
}  // namespace lm::test
