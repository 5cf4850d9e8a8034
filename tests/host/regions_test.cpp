#include "host/detector/regions.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::detector;
using Names = std::vector<std::string>;

// The left half, a triangle in the upper right with corners (0.5, 0), (1, 0) and (1, 0.5), and an exclusion
// over the lower left quarter.
const Regions kRegions(R"({
  "roi": [{"name": "left", "points": [{"x": "0", "y": "0"}, {"x": "0.5", "y": "0"},
                                      {"x": "0.5", "y": "1"}, {"x": "0", "y": "1"}]},
          {"name": "corner", "points": [{"x": "0.5", "y": "0"}, {"x": "1", "y": "0"}, {"x": "1", "y": "0.5"}]}],
  "ror": [{"name": "tree", "points": [{"x": "0", "y": "0.5"}, {"x": "0.5", "y": "0.5"},
                                      {"x": "0.5", "y": "1"}, {"x": "0", "y": "1"}]}]})");

struct TouchCase {
  const char* name;
  cv::Rect2d box;
  Names names;
};

class Touched : public testing::TestWithParam<TouchCase> {};

TEST_P(Touched, RegionsOverlapTheBoxOutsideTheExclusions) {
  EXPECT_EQ(kRegions.touched(GetParam().box), GetParam().names);
}

INSTANTIATE_TEST_SUITE_P(Boxes, Touched,
                         testing::Values(TouchCase{"in_one", {0.1, 0.1, 0.2, 0.2}, {"left"}},
                                         TouchCase{"across_both", {0.3, 0.05, 0.5, 0.1}, {"left", "corner"}},
                                         TouchCase{"all_under_the_exclusion", {0.1, 0.6, 0.2, 0.2}, {}},
                                         TouchCase{
                                             "partly_under_the_exclusion", {0.1, 0.4, 0.2, 0.2}, {"left"}},
                                         // the triangle's slope runs from (0.5, 0) to (1, 0.5): x - y = 0.5
                                         TouchCase{"below_the_slope", {0.6, 0.2, 0.1, 0.1}, {}},
                                         TouchCase{"above_the_slope", {0.8, 0.1, 0.1, 0.1}, {"corner"}},
                                         TouchCase{"past_the_frame", {0.9, -1, 1, 1.1}, {"corner"}},
                                         TouchCase{"nowhere", {0.6, 0.7, 0.2, 0.2}, {}}),
                         [](const auto& test) { return test.param.name; });

TEST(Regions, NamesAreInTheDocumentsOrderEachOnce) {
  EXPECT_EQ(kRegions.names(), (Names{"left", "corner"}));
  EXPECT_EQ(Regions(R"({"roi": [{"name": "b"}, {"name": "a"}, {"name": "b"}]})").names(), (Names{"b", "a"}));
}

TEST(Regions, WatchWhatIsInsideAndNotExcluded) {
  EXPECT_TRUE(kRegions.watched({0.25, 0.25}));
  EXPECT_FALSE(kRegions.watched({0.25, 0.75}));
  EXPECT_FALSE(kRegions.watched({0.75, 0.75}));
}

TEST(Regions, OutlinesThatCrossThemselvesAreEvenOdd) {
  // Twice around the same square: by the even-odd rule nothing is inside.
  const Region twice{"", {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  EXPECT_FALSE(twice.contains({0.5, 0.5}));
}

TEST(Regions, OddDocumentsHaveNone) {
  for (const char* text : {"", "[]", "{", R"({"roi": 5, "ror": "x"})", R"({"roi": [1, {"points": [2]}]})"})
    EXPECT_FALSE(Regions(text).watched({0.5, 0.5})) << text;
}

}  // namespace
