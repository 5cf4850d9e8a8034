// The result document.
#include <gtest/gtest.h>

#include "plugin/result.h"

#include <json/json.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "plugin/detector.h"
#include "tests/plugin/scene.h"

namespace lm::test {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

std::string textOf(const std::vector<boxRect>& boxes, const char* timestamp = "7") {
  lightMotion detector;
  detector.objList = boxes;
  const int length = detector.genRes(timestamp);
  EXPECT_EQ(static_cast<std::size_t>(length), detector.resText.size());
  return detector.resText;
}

Json::Value parsed(const std::string& text) {
  Json::Value root;
  EXPECT_TRUE(Json::Reader().parse(text, root)) << text;
  return root;
}

boxRect boxAt(float x) { return {x, 0.5F, 0.25F, 0.125F, {}}; }

std::string boxText(const std::string& x) {
  return R"({"height":0.125,"inRoi":[],"width":0.25,"x":)" + x + R"(,"y":0.5})";
}

// ---- format -------------------------------------------------------------------------------------

TEST(Result, IsOneLineWithSortedKeysNoBlanksAndALineFeed) {
  const boxRect box{0.15625F, 0.125F, 0.0625F, 0.75F, {}};
  EXPECT_EQ(textOf({box}, "1700000000123"),
            "{\"object\":[{\"height\":0.75,\"inRoi\":[],\"width\":0.0625,\"x\":0.15625,\"y\":0.125}],"
            "\"timestamp\":\"1700000000123\"}\n");
}

TEST(Result, BoxesKeepTheirOrder) {
  EXPECT_EQ(textOf({boxAt(0.75F), boxAt(0.25F), boxAt(0.5F)}),
            resultOf(boxText("0.75") + "," + boxText("0.25") + "," + boxText("0.5"), "7"));
}

TEST(Result, AnEmptyListStillGivesADocumentWithANullObject) {
  EXPECT_EQ(textOf({}), "{\"object\":null,\"timestamp\":\"7\"}\n");
}

TEST(Result, ANewTextReplacesThePreviousOne) {
  lightMotion detector;
  detector.objList = {boxAt(0.5F), boxAt(0.25F)};
  detector.genRes("1");
  detector.objList = {boxAt(0.5F)};
  const int length = detector.genRes("2");
  EXPECT_EQ(static_cast<std::size_t>(length), detector.resText.size());
  EXPECT_EQ(detector.resText, resultOf(boxText("0.5"), "2"));
}

TEST(Result, GetResCopiesAsManyBytesAsGenResReportedAndANul) {
  lightMotion detector;
  detector.objList = {boxAt(0.5F)};
  const auto length = static_cast<std::size_t>(detector.genRes("7"));
  std::vector<char> out(length + 2, 'x');
  EXPECT_EQ(detector.getRes(out.data()), 1);
  EXPECT_EQ(std::strlen(out.data()), length);
  EXPECT_EQ(out[length - 1], '\n');
  EXPECT_EQ(out[length + 1], 'x');
}

TEST(Result, TheTreeHasExactlyTheTwoMembersAndFiveForEachBox) {
  Json::Value root;
  write_query_result_data({boxAt(0.5F)}, "7", root);
  EXPECT_EQ(root.getMemberNames(), (std::vector<std::string>{"object", "timestamp"}));
  EXPECT_TRUE(root["timestamp"].isString());
  ASSERT_TRUE(root["object"].isArray());
  const Json::Value& box = root["object"][0];
  EXPECT_EQ(box.getMemberNames(), (std::vector<std::string>{"height", "inRoi", "width", "x", "y"}));
  for (const char* key : {"height", "width", "x", "y"}) EXPECT_EQ(box[key].type(), Json::realValue) << key;
  EXPECT_EQ(box["inRoi"].type(), Json::arrayValue);
}

TEST(Result, TimestampsAreCopiedWhateverTheyContain) {
  for (const char* timestamp : {"", " 40\t", "say \"40\"\\", "40\n", "\xE2\x82\xAC"}) {
    EXPECT_EQ(parsed(textOf({}, timestamp))["timestamp"].asString(), timestamp);
  }
}

// ---- numbers ------------------------------------------------------------------------------------

TEST(Result, NumbersAreWrittenAsJsoncppWritesDoubles) {
  const std::vector<std::pair<float, const char*>> cases = {
      {0.0F, "0.0"},
      {1.0F, "1.0"},
      {-0.5F, "-0.5"},
      {0.0009765625F, "0.0009765625"},    // 2^-10
      {0.1F, "0.10000000149011612"},      // 0.1F is 0.100000001490116119384765625: 17 digits of it
      {1e30F, "1.0000000150474662e+30"},  // 1000000015047466219876688855040
      {16777216.0F, "16777216.0"},        // 2^24
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(textOf({boxAt(value)}), resultOf(boxText(text), "7"));
}

TEST(Result, ReadingANumberBackGivesTheWidenedFloat) {
  for (const float value :
       {0.3F, 1.0F / 3.0F, 0.7071F, -123.456F, FLT_MAX, -FLT_MAX, FLT_MIN, FLT_TRUE_MIN}) {
    const Json::Value root = parsed(textOf({{value, 0.0F, 0.0F, 0.0F, {}}}));
    EXPECT_EQ(root["object"][0]["x"].asDouble(), static_cast<double>(value));
  }
}

TEST(Result, EachNumberHasItsOwnKey) {
  const Json::Value box = parsed(textOf({{0.1F, 0.2F, 0.3F, 0.4F, {}}}))["object"][0];
  EXPECT_EQ(box["x"].asDouble(), static_cast<double>(0.1F));
  EXPECT_EQ(box["y"].asDouble(), static_cast<double>(0.2F));
  EXPECT_EQ(box["width"].asDouble(), static_cast<double>(0.3F));
  EXPECT_EQ(box["height"].asDouble(), static_cast<double>(0.4F));
}

TEST(Result, ABoxWithANonFiniteNumberIsOmittedAndTheOthersKeepTheirOrder) {
  for (const auto coordinate : {&boxRect::x, &boxRect::y, &boxRect::width, &boxRect::height}) {
    for (const float value : {nan, -nan, infinity, -infinity}) {
      boxRect bad = boxAt(0.5F);
      bad.*coordinate = value;
      EXPECT_EQ(textOf({boxAt(0.75F), bad, boxAt(0.25F)}),
                resultOf(boxText("0.75") + "," + boxText("0.25"), "7"));
    }
  }
}

TEST(Result, WhenEveryBoxIsOmittedTheObjectIsNullAndThereIsStillADocument) {
  EXPECT_EQ(textOf({boxAt(nan), boxAt(nan)}), "{\"object\":null,\"timestamp\":\"7\"}\n");
}

// ---- names --------------------------------------------------------------------------------------

TEST(Result, ABoxTouchingNoRegionHasAnEmptyList) {
  EXPECT_EQ(textOf({boxAt(0.5F)}), resultOf(boxText("0.5"), "7"));
}

TEST(Result, TwoNamesAreListedInTheBoxesOrderEvenWhenTheyAreEqual) {
  boxRect ordered = boxAt(0.5F);
  ordered.names = {"yard", "gate"};
  boxRect equal = boxAt(0.5F);
  equal.names = {"gate", "gate"};
  EXPECT_EQ(textOf({ordered, equal}),
            resultOf(R"({"height":0.125,"inRoi":["yard","gate"],"width":0.25,"x":0.5,"y":0.5},)"
                     R"({"height":0.125,"inRoi":["gate","gate"],"width":0.25,"x":0.5,"y":0.5})",
                     "7"));
}

TEST(Result, NamesAreCopiedWhateverTheyContain) {
  const std::vector<std::string> names = {"", "a \"b\"\\c", "line\nfeed", "T\xC3\xBCr",
                                          std::string("a\0b", 3)};
  boxRect box = boxAt(0.5F);
  box.names = names;
  const Json::Value read = parsed(textOf({box}))["object"][0]["inRoi"];
  ASSERT_EQ(read.size(), names.size());
  for (Json::ArrayIndex i = 0; i < read.size(); ++i) EXPECT_EQ(read[i].asString(), names[i]);
}

}  // namespace
}  // namespace lm::test
