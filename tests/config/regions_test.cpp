// Regions of the document.
#include <gmock/gmock.h>

#include <json/json.h>

#include <cstdint>
#include <ostream>

#include "plugin/detector.h"
#include "tests/support/capture.h"
#include "tests/support/thrown.h"

inline bool operator==(const pnt& a, const pnt& b) { return a.x == b.x && a.y == b.y; }
inline void PrintTo(const pnt& point, std::ostream* out) { *out << '(' << point.x << ", " << point.y << ')'; }

namespace lm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Points = std::vector<pnt>;

std::string point(const std::string& x, const std::string& y) {
  return R"({"x":)" + x + R"(,"y":)" + y + "}";
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// A list of `count` different points: (1, 0), (2, 0), ... for a frame 10 wide.
std::string points(int count) {
  std::string list;
  for (int i = 1; i <= count; ++i)
    list += (i > 1 ? "," : "") + point("\"0." + std::to_string(i) + "\"", "\"0\"");
  return "[" + list + "]";
}

class Regions : public ::testing::Test {
 protected:
  Regions() {
    detector_.frmW = 10;
    detector_.frmH = 100;
  }

  bool read(const std::string& document) {
    bool done = false;
    const Printed printed = printedBy([&] { done = detector_.jsonReaderRoi(document, include_, exclude_); });
    EXPECT_EQ(printed, Printed{});
    return done;
  }

  std::string thrownReading(const std::string& document) {
    return thrownBy([&] { detector_.jsonReaderRoi(document, include_, exclude_); });
  }

  // The first vertex of a region of interest whose first point is (x, y).
  pnt firstVertex(const std::string& x, const std::string& y) {
    EXPECT_TRUE(read(R"({"roi":[{"points":[)" + point(x, y) + "," + point("0", "0") + "," + point("0", "0") +
                     "]}]}"));
    return include_.at(0).points.at(0);
  }

  lightMotion detector_;
  std::vector<polygon> include_;
  std::vector<polygon> exclude_;
};

TEST_F(Regions, NamesAndVerticesAreReadInOrder) {
  detector_.frmW = 640;
  detector_.frmH = 480;
  EXPECT_TRUE(read(
      R"({"roi":[{"name":"gate","points":[{"x":"0.125","y":"0.25"},{"x":"0.875","y":"0.25"},{"x":"0.5","y":"1"}]},)"
      R"({"name":"yard","points":[]}],)"
      R"("ror":[{"name":"tree","points":[{"x":"0","y":"0"},{"x":"0.5","y":"0"},{"x":"0","y":"0.5"}]}]})"));
  ASSERT_EQ(include_.size(), 2U);
  EXPECT_EQ(include_[0].name, "gate");
  EXPECT_EQ(include_[0].points, (Points{{80, 120}, {560, 120}, {320, 480}}));
  EXPECT_EQ(include_[0].mask, nullptr);
  EXPECT_EQ(include_[1].name, "yard");
  ASSERT_EQ(exclude_.size(), 1U);
  EXPECT_EQ(exclude_[0].name, "tree");
  EXPECT_EQ(exclude_[0].points, (Points{{0, 0}, {320, 0}, {0, 240}}));
  EXPECT_EQ(exclude_[0].mask, nullptr);
}

TEST_F(Regions, OfInterestWithFewerThanThreeVerticesKeepOnlyTheName) {
  for (int count = 0; count <= 4; ++count) {
    EXPECT_TRUE(read(R"({"roi":[{"name":"gate","points":)" + points(count) + "}]}"));
    ASSERT_EQ(include_.size(), 1U);
    EXPECT_EQ(include_[0].name, "gate");
    EXPECT_EQ(include_[0].points.size(), count > 2 ? static_cast<std::size_t>(count) : 0U);
  }
}

TEST_F(Regions, ToExcludeKeepAnyNumberOfVertices) {
  for (int count = 0; count <= 4; ++count) {
    EXPECT_TRUE(read(R"({"ror":[{"name":"tree","points":)" + points(count) + "}]}"));
    ASSERT_EQ(exclude_.size(), 1U);
    EXPECT_EQ(exclude_[0].name, "tree");
    EXPECT_EQ(exclude_[0].points.size(), static_cast<std::size_t>(count));
  }
  EXPECT_EQ(exclude_[0].points, (Points{{1, 0}, {2, 0}, {3, 0}, {4, 0}}));
}

TEST_F(Regions, TooFewVerticesOfARegionOfInterestAreNotConverted) {
  EXPECT_TRUE(read(R"({"roi":[{"points":[{"x":"left"},{}]}]})"));
  EXPECT_THAT(include_.at(0).points, IsEmpty());
}

TEST_F(Regions, ANameThatIsNotAStringIsEmpty) {
  for (const std::string name : {"7", "null", "true", "[]", "{}"}) {
    EXPECT_TRUE(read(R"({"roi":[{"name":)" + name + R"(}],"ror":[{"name":)" + name + "}]}"));
    EXPECT_EQ(include_.at(0).name, "") << name;
    EXPECT_EQ(exclude_.at(0).name, "") << name;
  }
}

TEST_F(Regions, NamesAreCopiedUnchangedAndMayRepeat) {
  EXPECT_TRUE(read(R"({"roi":[{"name":" a\t\u20ac"},{"name":" a\t\u20ac"},{"name":""},{}]})"));
  ASSERT_EQ(include_.size(), 4U);
  EXPECT_EQ(include_[0].name, " a\t\xE2\x82\xAC");
  EXPECT_EQ(include_[1].name, include_[0].name);
  EXPECT_EQ(include_[2].name, "");
  EXPECT_EQ(include_[3].name, "");
}

TEST_F(Regions, PointsThatAreNotAListGiveNoVertices) {
  for (const std::string list : {"null", "3", "\"0.1\"", "true", R"({"x":"1","y":"1"})"}) {
    EXPECT_TRUE(read(R"({"roi":[{"points":)" + list + R"(}],"ror":[{"points":)" + list + "}]}"));
    EXPECT_THAT(include_.at(0).points, IsEmpty()) << list;
    EXPECT_THAT(exclude_.at(0).points, IsEmpty()) << list;
  }
}

TEST_F(Regions, ANullRegionIsAnUnnamedEmptyOne) {
  EXPECT_TRUE(read(R"({"roi":[null]})"));
  ASSERT_EQ(include_.size(), 1U);
  EXPECT_EQ(include_[0].name, "");
}

TEST_F(Regions, MembersThatAreNotAListGiveAnEmptyList) {
  for (const std::string member : {"null", "1", "\"all\"", "true", R"({"name":"gate"})", "[]"}) {
    include_.resize(1);
    exclude_.resize(1);
    EXPECT_TRUE(read(R"({"roi":)" + member + R"(,"ror":)" + member + "}"));
    EXPECT_TRUE(include_.empty()) << member;
    EXPECT_TRUE(exclude_.empty()) << member;
  }
}

TEST_F(Regions, ADocumentWithoutExclusionsFillsTheOtherList) {
  exclude_.resize(2);
  EXPECT_TRUE(read(R"({"roi":[{"name":"gate"}]})"));
  EXPECT_EQ(include_.size(), 1U);
  EXPECT_TRUE(exclude_.empty());
}

TEST_F(Regions, ADocumentWithoutRegionsOfInterestFillsTheOtherList) {
  include_.resize(2);
  EXPECT_TRUE(read(R"({"ror":[{"name":"tree"}]})"));
  EXPECT_TRUE(include_.empty());
  EXPECT_EQ(exclude_.size(), 1U);
}

TEST_F(Regions, TheListsAreReplacedNotExtended) {
  std::uint8_t someMask = 0;
  include_ = {{"old", {{1, 2}}, &someMask}, {"older", {}, &someMask}};
  exclude_ = include_;
  EXPECT_TRUE(read(R"({"roi":[{}],"ror":[{"name":"tree"}]})"));
  ASSERT_EQ(include_.size(), 1U);
  EXPECT_EQ(include_[0].name, "");
  EXPECT_THAT(include_[0].points, IsEmpty());
  EXPECT_EQ(include_[0].mask, nullptr);
  ASSERT_EQ(exclude_.size(), 1U);
  EXPECT_EQ(exclude_[0].name, "tree");
  EXPECT_EQ(exclude_[0].mask, nullptr);
}

TEST_F(Regions, TextThatIsNotJsonLeavesBothListsAndPrintsNothing) {
  include_ = {{"old", {{1, 2}}, nullptr}};
  exclude_ = {{"older", {}, nullptr}};
  EXPECT_FALSE(read("not json"));
  ASSERT_EQ(include_.size(), 1U);
  EXPECT_EQ(include_[0].name, "old");
  ASSERT_EQ(exclude_.size(), 1U);
  EXPECT_EQ(exclude_[0].name, "older");
}

// ---- from fractions to pixels -------------------------------------------------------------------

struct Scaled {
  int size;
  std::string fraction;
  int pixel;
};

TEST_F(Regions, FractionsAreScaledInSinglePrecisionAndTruncatedTowardZero) {
  const std::vector<Scaled> cases = {
      {640, "1", 640},
      {640, "0.9999", 639},  // 639.936
      {641, "0.5", 320},     // 320.5
      {10, "-0.03", 0},      // -0.3
      {10, "-0.25", -2},     // -2.5
      {640, "2.5", 1600},    // no clamping
      {640, "-1", -640},
      {640, "0", 0},
      // 0.29F is 0.28999999166; times 100 it lies between the floats 28.99999809 and 29 and is rounded to 29.
      // In double precision the product would stay below 29.
      {100, "0.29", 29},
      {16777217, "1", 16777216},  // 2^24 + 1 is not a float
      {2147483647, "0.5", 1073741824},
      {640, " \\t0.5", 320},
      {640, "0.5abc", 320},
      {640, "+.5", 320},
      {640, "5e-1", 320},
      {640, "0x.8", 320},
      {640, "0,5", 0},
  };
  for (const auto& [size, fraction, pixel] : cases) {
    detector_.frmW = size;
    detector_.frmH = size;
    EXPECT_EQ(firstVertex(quoted(fraction), "0"), (pnt{pixel, 0})) << fraction;
    EXPECT_EQ(firstVertex("0", quoted(fraction)), (pnt{0, pixel})) << fraction;
  }
}

TEST_F(Regions, WidthScalesXAndHeightScalesY) {
  EXPECT_EQ(firstVertex(quoted("0.5"), quoted("0.5")), (pnt{5, 50}));
}

TEST_F(Regions, CoordinatesOutOfIntRangeBecomeTheSmallestInt) {
  // Among them 3e38, whose product is infinite, and the boundary itself: 2 * 2^30 = 2^31.
  for (const std::string fraction : {"1e30", "-1e30", "3e38", "nan", "-nan", "inf", "-INFINITY"}) {
    EXPECT_EQ(firstVertex(quoted(fraction), quoted(fraction)), (pnt{INT32_MIN, INT32_MIN})) << fraction;
  }
  detector_.frmW = 1073741824;
  EXPECT_EQ(firstVertex(quoted("2"), "0").x, INT32_MIN);
  EXPECT_EQ(firstVertex(quoted("-2"), "0").x, INT32_MIN);
  EXPECT_EQ(firstVertex(quoted("1.9999999"), "0").x, 2147483520);  // the largest float below 2^31
}

TEST_F(Regions, CoordinatesMayBeJsonNumbers) {
  EXPECT_EQ(firstVertex("0.5", "0.25"), (pnt{5, 25}));
  EXPECT_EQ(firstVertex("1", "-2"), (pnt{10, -200}));
  EXPECT_EQ(firstVertex("1e-1", "123456"), (pnt{1, 12345600}));
}

// ---- exceptions ---------------------------------------------------------------------------------

class Lists : public Regions, public ::testing::WithParamInterface<const char*> {
 protected:
  // A region of the list under test with two valid points and `bad`.
  std::string regionWith(const std::string& bad) {
    return "{\"" + std::string(GetParam()) + R"(":[{"points":[)" + point("0", "0") + "," + bad + "," +
           point("0", "0") + "]}]}";
  }
};
INSTANTIATE_TEST_SUITE_P(Both, Lists, ::testing::Values("roi", "ror"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(Lists, ACoordinateWithoutANumberThrows) {
  for (const std::string& bad : {point(quoted("left"), "0"), point("0", quoted("")), point(quoted(" "), "0"),
                                 point("null", "0"), point("0", "true"), std::string(R"({"x":"0"})"),
                                 std::string(R"({"y":"0"})"), std::string("{}"), std::string("null")}) {
    EXPECT_EQ(thrownReading(regionWith(bad)), "std::invalid_argument: stof") << bad;
  }
}

TEST_P(Lists, ACoordinateBeyondTheFloatRangeThrows) {
  for (const std::string number : {"1e39", "-1e39", "1e-60"}) {
    EXPECT_EQ(thrownReading(regionWith(point(quoted(number), "0"))), "std::out_of_range: stof") << number;
    EXPECT_EQ(thrownReading(regionWith(point("0", quoted(number)))), "std::out_of_range: stof") << number;
  }
}

TEST_P(Lists, XIsConvertedBeforeY) {
  EXPECT_EQ(thrownReading(regionWith(point(quoted("left"), quoted("1e39")))), "std::invalid_argument: stof");
  EXPECT_EQ(thrownReading(regionWith(point(quoted("1e39"), quoted("left")))), "std::out_of_range: stof");
}

TEST_P(Lists, ValuesOfTheWrongKindThrowAJsonException) {
  const std::string list = GetParam();
  for (const std::string& document :
       {regionWith(point("{}", "0")), regionWith(point("0", "[0.5]")), regionWith("0.5"), regionWith("[0,0]"),
        regionWith("\"0.5\""), "{\"" + list + "\":[5]}", "{\"" + list + "\":[\"gate\"]}",
        "{\"" + list + "\":[[]]}"}) {
    EXPECT_THROW(detector_.jsonReaderRoi(document, include_, exclude_), Json::Exception) << document;
  }
}

TEST_F(Regions, ARootOfTheWrongKindThrowsAJsonException) {
  for (const std::string root : {"[]", "\"roi\"", "1", "true"}) {
    EXPECT_THROW(detector_.jsonReaderRoi(root, include_, exclude_), Json::Exception) << root;
  }
}

}  // namespace
}  // namespace lm::test
