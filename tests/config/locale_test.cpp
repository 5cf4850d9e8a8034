// The host's locale has no effect on how numbers are read and written.
#include <gmock/gmock.h>

#include <clocale>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "tests/config/comma_locale.h"
#include "tests/support/capture.h"
#include "tests/support/mask_art.h"

namespace lm::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Of, CommaLocale,
                         ::testing::Values(Comma::c, Comma::cpp, Comma::cppWithoutGroups, Comma::both),
                         nameOf);

TEST_P(CommaLocale, SettingsHaveDecimalPoints) {
  kAMBLE engine;
  std::vector<std::string> entries = {"minBoxW 0.5", "minBoxH 0,5", "MIN_BOUNDING_BOX_H 0.25", "frmW 1.234",
                                      "frmH 5678"};
  std::vector<polygon> none;
  EXPECT_THAT(engine.setParam(entries, none, none), ::testing::ElementsAre(true, false, true, true, true));
  EXPECT_EQ(engine.minObjW, 0.5F);
  EXPECT_EQ(engine.minObjH, 0.25F);
  EXPECT_EQ(engine.szImgX, 1);
  EXPECT_EQ(engine.szImgY, 5678);
}

TEST_P(CommaLocale, CoordinatesHaveDecimalPointsAsStringsAndAsNumbers) {
  lightMotion detector;
  detector.frmW = 1000;
  detector.frmH = 1000;
  std::vector<polygon> include;
  std::vector<polygon> exclude;
  ASSERT_TRUE(
      detector.jsonReaderRoi(R"({"roi":[{"points":[{"x":"0.5","y":0.5},{"x":0.125,"y":"1e-1"},)"
                             R"({"x":1.5,"y":1234.5}]}],"ror":[{"points":[{"x":2.5e-1,"y":-0.75}]}]})",
                             include, exclude));
  const auto& points = include.at(0).points;
  ASSERT_EQ(points.size(), 3U);
  EXPECT_EQ(points[0].x, 500);
  EXPECT_EQ(points[0].y, 500);
  EXPECT_EQ(points[1].x, 125);
  EXPECT_EQ(points[1].y, 100);
  EXPECT_EQ(points[2].x, 1500);
  EXPECT_EQ(points[2].y, 1234500);
  EXPECT_EQ(exclude.at(0).points.at(0).x, 250);
  EXPECT_EQ(exclude.at(0).points.at(0).y, -750);
}

TEST_P(CommaLocale, StringsAndCommentsAreNotReadAsNumbers) {
  lightMotion detector;
  std::vector<polygon> include;
  std::vector<polygon> exclude;
  ASSERT_TRUE(detector.jsonReaderRoi(R"({"scale":0.5, // 1.5 "
    "roi":[{"name":"gate 1.5 \" 2.5 \\"},{"name":"/* 3.5"}], /* 4.5 " */ "ror":[{"name":"// 5.5"}],"last":-6.5E+1})",
                                     include, exclude));
  ASSERT_EQ(include.size(), 2U);
  EXPECT_EQ(include[0].name, R"(gate 1.5 " 2.5 \)");
  EXPECT_EQ(include[1].name, "/* 3.5");
  ASSERT_EQ(exclude.size(), 1U);
  EXPECT_EQ(exclude[0].name, "// 5.5");
}

TEST_P(CommaLocale, DocumentsWithNumbersAreRead) {
  lightMotion detector;
  const Printed printed = printedBy([&] {
    EXPECT_THAT(detector.myjsonReader(R"({"frmW":"1280","version":1234.5,"scale":0.5,"list":[1.5e3,-0.25]})"),
                ::testing::ElementsAre("frmW 1280"));
  });
  EXPECT_EQ(printed, Printed{});
  EXPECT_EQ(detector.frmW, 1280);
}

TEST_P(CommaLocale, ResultsHaveDecimalPointsAndNoGrouping) {
  lightMotion detector;
  detector.objList = {{0.5F, 1234.5F, 0.25F, 1e30F, {}}};
  detector.genRes("1700000000123");
  EXPECT_EQ(
      detector.resText,
      "{\"object\":[{\"height\":1.0000000150474662e+30,\"inRoi\":[],\"width\":0.25,\"x\":0.5,\"y\":1234.5}],"
      "\"timestamp\":\"1700000000123\"}\n");
}

TEST_P(CommaLocale, TimestampsAreDecimal) {
  kAMBLE engine;
  EXPECT_TRUE(engine.setTimestamp("1700000000123"));
  EXPECT_EQ(engine.curTimestamp, 1700000000123);
  EXPECT_TRUE(engine.setTimestamp("1.234"));
  EXPECT_EQ(engine.curTimestamp, 1);
}

TEST_P(CommaLocale, ParameterFilesHaveDecimalPoints) {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("comma-parameters-" + std::to_string(getpid()));
  std::ofstream(path) << "minObjW 0.5\nminObjH 0,5\nthrMatch 1.9\nthrConnect 1234.5\nthrHeuris 5678\n";
  kAMBLE engine;
  engine.ParserParams(path.c_str());
  std::filesystem::remove(path);
  EXPECT_EQ(engine.minObjW, 0.5F);
  EXPECT_EQ(engine.minObjH, 0.0F);
  EXPECT_EQ(engine.thrMatch, 1);
  EXPECT_EQ(engine.thrConnect, 1234.5F);
  EXPECT_EQ(engine.thrHeuris, 5678);
}

TEST_P(CommaLocale, MessagesHaveNoGrouping) {
  lightMotion detector;
  const Printed printed = printedBy(
      [&] { EXPECT_FALSE(detector.init(R"({"frmW":"12345","frmH":"-67890","frmChn":"1000000"})")); });
  EXPECT_EQ(printed, (Printed{"Error: invalid parameter[frmChn:1000000,frmW:12345,frmH:-67890] \n", ""}));
}

TEST_P(CommaLocale, TheHostsLocaleIsUnchanged) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  const locale_t thread = uselocale(static_cast<locale_t>(nullptr));
  const std::locale global;

  const std::string document = R"({"frmW":"64","frmH":"32","frmChn":"1","minBoxW":"0.5","roi":[{"points":[)"
                               R"({"x":0,"y":0},{"x":0.5,"y":0},{"x":"0.5","y":"0.5"}]}]})";
  lightMotion detector;
  ASSERT_TRUE(detector.init(document.c_str()));
  const Bytes frame(std::size_t{64} * 32, 50);
  int length = 0;
  const Printed printed = printedBy([&] { detector.frameProc(frame.data(), "1000", &length); });
  EXPECT_EQ(printed.err, "W, H, Pixels = 64, 32, 2048\n");
  detector.objList = {{0.5F, 0.5F, 0.5F, 0.5F, {}}};
  detector.genRes("1");
  EXPECT_THROW(detector.frameProc(frame.data(), "noon", &length), std::invalid_argument);

  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
  EXPECT_EQ(uselocale(static_cast<locale_t>(nullptr)), thread);
  EXPECT_TRUE(std::locale() == global);
}

}  // namespace
}  // namespace lm::test
