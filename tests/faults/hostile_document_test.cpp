// Hostile documents: deeply nested, long, with many vertices, with invalid encodings.
#include <gtest/gtest.h>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "tests/plugin/scene.h"
#include "tests/support/capture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

constexpr FrameSize tiny{16, 16, 1};

const std::string tooDeep = "Json::RuntimeError: Exceeded stackLimit in readValue().";

// A good document with an unused value nested `levels` levels deep, counting the document itself.
std::string nested(std::size_t levels, bool closed = true) {
  const std::string inner = std::string(levels - 1, '[') + (closed ? std::string(levels - 1, ']') : "");
  return documentFor(tiny, ",\"unread\":" + inner);
}

std::string outcomeOf(const std::string& document) {
  bool stands = false;
  const std::string thrown = thrownBy([&] { stands = initialization(document.c_str()); });
  ::terminate();
  return stands ? "stands" : thrown;
}

TEST(NestedDocument, IsReadToA1000Levels) {
  EXPECT_EQ(outcomeOf(nested(1000)), "stands");
  EXPECT_EQ(outcomeOf(nested(1001)), tooDeep);
}

TEST(NestedDocument, OfManyLevelsThrowsBeforeTheStackIsUsedUp) {
  for (const bool closed : {true, false}) EXPECT_EQ(outcomeOf(nested(100'000, closed)), tooDeep);
  EXPECT_EQ(outcomeOf(std::string(100'000, '[')), tooDeep);
}

TEST(NestedDocument, OfObjectsCountsItsLevelsAlike) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += R"({"a":)";
  EXPECT_EQ(outcomeOf(text), tooDeep);
}

TEST(LongDocument, OfAMebibyteIsRead) {
  const std::string filling(1 << 20, 'x');
  EXPECT_EQ(outcomeOf(documentFor(tiny, R"(,"unread":")" + filling + '"')), "stands");
  EXPECT_EQ(outcomeOf(std::string("/*").append(filling).append("*/").append(documentFor(tiny))), "stands");
  EXPECT_EQ(outcomeOf(std::string(1 << 20, ' ') + documentFor(tiny)), "stands");
}

TEST(BrokenEncoding, InANameIsKeptAsItIs) {
  for (const std::string name : {"\xff", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82"}) {
    lightMotion detector;
    const std::string region = R"({"name":")" + name + R"(","points":[]})";
    ASSERT_TRUE(detector.init(documentFor(tiny, "", region).c_str()));
    ASSERT_EQ(detector.engine->roiInclude.size(), 1U);
    EXPECT_EQ(detector.engine->roiInclude[0].name, name);
  }
}

TEST(BrokenEncoding, OutsideOfTextsIsNoJson) {
  const Printed printed =
      printedBy([] { EXPECT_EQ(outcomeOf(std::string("\xff").append(documentFor(tiny))), "nothing"); });
  EXPECT_EQ(printed.out,
            "Error: json configuration is incorrect format \n"
            "Error: invalid parameter[frmChn:0,frmW:0,frmH:0] \n");
}

TEST(DuplicateKeys, TheLastOneCounts) {
  lightMotion detector;
  const std::string document = R"({"frmW":"9","frmW":"x","frmW":"7","frmH":"1","frmH":"5","frmChn":"1",)"
                               R"("roi":[],"roi":[)" +
                               wholeFrame + "," + wholeFrame + "]}";
  ASSERT_TRUE(detector.init(document.c_str()));
  EXPECT_EQ(detector.frmW, 7);
  EXPECT_EQ(detector.frmH, 5);
  EXPECT_EQ(detector.engine->roiInclude.size(), 2U);
}

TEST(NulByte, EndsTheDocument) {
  std::string document = documentFor(tiny) + " nonsense";
  document[document.size() - 9] = '\0';
  EXPECT_EQ(outcomeOf(document), "stands");
  document[10] = '\0';
  const Capture out(stdout);
  EXPECT_EQ(outcomeOf(document), "nothing");
}

TEST(NulByte, WrittenIntoAValueEndsIt) {
  lightMotion detector;
  ASSERT_TRUE(
      detector.init(documentFor(tiny, R"(,"sensitivity":"2\u00005","minBoxW":"0.5\u0000x")").c_str()));
  EXPECT_EQ(detector.engine->thrMatch, 17);
  EXPECT_EQ(detector.engine->minObjW, 0.5F);
}

// A comb with 50,000 teeth of zero width at the left border; the outline returns along the bottom. By the
// even-odd rule it covers exactly the frame.
TEST(RegionOf100000Vertices, IsDrawn) {
  std::string points = R"({"x":"2","y":"-1"},{"x":"2","y":"2"},{"x":"-1","y":"2"})";
  for (int i = 0; i < 49'998; ++i) points += R"(,{"x":"-1","y":"0.5"},{"x":"-1","y":"1"})";
  points += R"(,{"x":"-1","y":"-1"})";
  lightMotion detector;
  ASSERT_TRUE(detector.init(documentFor(tiny, "", R"({"name":"comb","points":[)" + points + "]}").c_str()));
  EXPECT_EQ(detector.engine->roiInclude[0].points.size(), 100'000U);
  for (int i = 0; i < tiny.width * tiny.height; ++i) ASSERT_EQ(detector.engine->roiMask[i], 1) << i;
}

}  // namespace
}  // namespace lm::test
