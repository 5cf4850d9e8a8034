// The parameter file.
#include <gtest/gtest.h>

#include <cfloat>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "engine/kamble.h"
#include "tests/config/settings.h"
#include "tests/support/capture.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

namespace fs = std::filesystem;

class ParamFile : public ::testing::Test {
 protected:
  ParamFile() : path_(fs::temp_directory_path() / ("parameters-" + std::to_string(getpid()))) {}
  ~ParamFile() override { fs::remove(path_); }

  void readInto(kAMBLE& engine, const std::string& text) {
    std::ofstream(path_, std::ios::binary) << text;
    EXPECT_EQ(printedBy([&] { engine.ParserParams(path_.c_str()); }), Printed{});
  }

  // Reads a file with this text into a new engine and expects only `changes`.
  void expectChanges(const std::string& text, const Settings& changes) {
    kAMBLE engine;
    readInto(engine, text);
    EXPECT_EQ(settingsOf(engine), defaultsExcept(changes)) << text.substr(0, 200);
  }

  fs::path path_;
};

TEST_F(ParamFile, EveryKeySetsItsField) {
  expectChanges("thrMatch 33\n", {{"thrMatch", 33}});
  expectChanges("thrHeuris 11\n", {{"thrHeuris", 11}});
  expectChanges("thrIllum 12\n", {{"thrIllum", 12}});
  expectChanges("minObjW 0.25\n", {{"minObjW", 0.25}});
  expectChanges("minObjH 0.5\n", {{"minObjH", 0.5}});
  expectChanges("thrCcPxl 40\n", {{"thrCcPxl", 40}, {"thrCcPxl2", 40}});
  expectChanges("thrConnect 2.5\n", {{"thrConnect", 2.5}});
}

TEST_F(ParamFile, SeveralLinesAreAppliedAndTheLastLineForAKeyWins) {
  expectChanges("thrMatch 1\nminObjW 0.5\nthrMatch 2\n", {{"thrMatch", 2}, {"minObjW", 0.5}});
}

TEST_F(ParamFile, WholeNumbersAreTruncatedTowardZero) {
  expectChanges("thrMatch 12.9\n", {{"thrMatch", 12}});
  expectChanges("thrMatch -3.7\n", {{"thrMatch", -3}});
  expectChanges("thrHeuris 0.99\n", {{"thrHeuris", 0}});
  expectChanges("thrCcPxl -0.5\n", {{"thrCcPxl", 0}, {"thrCcPxl2", 0}});
}

TEST_F(ParamFile, ValuesAreTakenWithoutARangeTest) {
  expectChanges("thrMatch 0\nthrHeuris -5\nminObjW 7\nminObjH -1.5\nthrCcPxl -9\nthrConnect 0\n",
                {{"thrMatch", 0},
                 {"thrHeuris", -5},
                 {"minObjW", 7},
                 {"minObjH", -1.5},
                 {"thrCcPxl", -9},
                 {"thrCcPxl2", -9},
                 {"thrConnect", 0}});
}

TEST_F(ParamFile, AKeyAloneSetsMinus1) {
  for (const std::string blanks : {"", " ", " \t ", "\r"}) {
    expectChanges("thrHeuris" + blanks + "\n", {{"thrHeuris", -1}});
    expectChanges("minObjH" + blanks + "\n", {{"minObjH", -1}});
    expectChanges("thrCcPxl" + blanks, {{"thrCcPxl", -1}, {"thrCcPxl2", -1}});
  }
}

TEST_F(ParamFile, AValueThatIsNotANumberSets0) {
  for (const std::string value : {"abc", "-", "x1", "nan", "NaN", "inf", "#"}) {
    expectChanges("minObjW " + value + "\n", {{"minObjW", 0}});
    expectChanges("thrMatch " + value + "\n", {{"thrMatch", 0}});
  }
}

TEST_F(ParamFile, NumbersEndAtTheFirstOtherCharacter) {
  expectChanges("thrMatch 12px\nminObjW 0.5,7\nthrConnect 1,5\nthrIllum 0x10\n",
                {{"thrMatch", 12}, {"minObjW", 0.5}, {"thrConnect", 1}, {"thrIllum", 0}});
}

TEST_F(ParamFile, NumbersMayHaveAnyFormatThatAStreamReads) {
  expectChanges("thrMatch +5\nthrHeuris 5e1\nthrIllum 7.\nminObjW .5\nminObjH 25E-2\n",
                {{"thrMatch", 5}, {"thrHeuris", 50}, {"thrIllum", 7}, {"minObjW", 0.5}, {"minObjH", 0.25}});
}

TEST_F(ParamFile, ValuesAre32BitFloats) {
  expectChanges("thrMatch 16777217\n", {{"thrMatch", 16777216}});  // 2^24 + 1 is not a float
  expectChanges("minObjW 0.1\n", {{"minObjW", static_cast<double>(0.1F)}});
}

TEST_F(ParamFile, ANumberBeyondTheFloatRangeIsTheLargestFloat) {
  expectChanges("minObjW 1e50\nthrConnect -1e50\n", {{"minObjW", FLT_MAX}, {"thrConnect", -FLT_MAX}});
}

TEST_F(ParamFile, ValuesOutOfIntRangeBecomeTheSmallestInt) {
  for (const std::string value : {"1e50", "-1e50", "2147483648", "-2147483904", "3e9"}) {
    expectChanges("thrMatch " + value + "\n", {{"thrMatch", INT32_MIN}});
  }
  expectChanges("thrMatch 2147483520\n", {{"thrMatch", 2147483520}});  // the largest float below 2^31
}

TEST_F(ParamFile, BlanksAndTabsAroundKeyAndValueAreSkipped) {
  for (const std::string space : {" ", "   ", "\t", "\t \t"}) {
    expectChanges("thrMatch" + space + "12\n", {{"thrMatch", 12}});
    expectChanges(space + "thrMatch" + space + "12" + space + "\n", {{"thrMatch", 12}});
  }
}

TEST_F(ParamFile, WhatFollowsTheValueIsIgnored) {
  expectChanges("thrMatch 12 13 thrHeuris 1 # text\n", {{"thrMatch", 12}});
}

TEST_F(ParamFile, LinesMayEndWithACarriageReturn) {
  expectChanges("thrMatch 12\r\n\r\nminObjW 0.5\r\n", {{"thrMatch", 12}, {"minObjW", 0.5}});
}

TEST_F(ParamFile, LinesWithoutAKnownKeyAreIgnored) {
  for (const std::string line : {"", "   ", "# thrMatch 12", "#thrMatch 12", "THRMATCH 12", "thrmatch 12",
                                 "thrMatch= 12", "thrMatch2 12", "thrCcPxl2 12", "12 thrMatch", "[thrMatch]",
                                 "MIN_MATCH_DIST 12", "sensitivity 1", "frmW 640"}) {
    expectChanges(line + "\nthrIllum 1\n", {{"thrIllum", 1}});
  }
}

TEST_F(ParamFile, TheLastLineNeedsNoLineFeed) {
  expectChanges("thrIllum 1\nthrMatch 12", {{"thrIllum", 1}, {"thrMatch", 12}});
  expectChanges("thrIllum", {{"thrIllum", -1}});
}

TEST_F(ParamFile, AnEmptyFileChangesNothing) { expectChanges("", {}); }

// "thrMatch 12", padded with blanks to `length` characters.
std::string lineOf(std::size_t length) {
  std::string line = "thrMatch 12";
  return line + std::string(length - line.size(), ' ');
}

TEST_F(ParamFile, ALineOf4095CharactersIsRead) {
  expectChanges(lineOf(4095) + "\nthrIllum 1\n", {{"thrMatch", 12}, {"thrIllum", 1}});
  expectChanges(lineOf(4095), {{"thrMatch", 12}});
}

TEST_F(ParamFile, ALongerLineEndsTheReading) {
  for (const std::size_t length : {4096U, 4097U, 8192U, 100000U}) {
    expectChanges("thrHeuris 1\n" + lineOf(length) + "\nthrIllum 1\n", {{"thrHeuris", 1}});
    expectChanges("thrHeuris 1\n" + lineOf(length), {{"thrHeuris", 1}});
  }
}

TEST_F(ParamFile, AFileThatCannotBeReadChangesNothing) {
  for (const std::string& path :
       {path_.string() + "-missing", fs::temp_directory_path().string(), std::string()}) {
    kAMBLE engine;
    EXPECT_EQ(printedBy([&] { engine.ParserParams(path.c_str()); }), Printed{});
    EXPECT_EQ(settingsOf(engine), defaultsExcept({})) << path;
  }
}

TEST_F(ParamFile, TheFirstFrameReplacesThrConnectAndDerivesThePixelMinima) {
  kAMBLE engine;
  readInto(engine, "thrConnect 7\nminObjW 0.5\nminObjH 0.25\n");
  EXPECT_EQ(engine.thrConnect, 7.0F);
  const Capture err(stderr);
  const Bytes frame(std::size_t{64} * 32, 50);
  ASSERT_TRUE(engine.learnBg_ncv(frame.data(), 64, 32, 1));
  EXPECT_EQ(engine.thrConnect, 2.0F);  // 64 / 32
  EXPECT_EQ(engine.minObjWPxl, 32);    // 64 * 0.5
  EXPECT_EQ(engine.minObjHPxl, 8);     // 32 * 0.25
}

}  // namespace
}  // namespace lm::test
