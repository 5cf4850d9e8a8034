// The limits of the single checks.
#include <gtest/gtest.h>
#include <json/json.h>

#include "config/check/crossing.h"
#include "config/check/findings.h"
#include "config/check/known_keys.h"
#include "host/detector/check/effect.h"
#include "tests/host/check_findings.h"

namespace {

using namespace lm::host::check;
using namespace lm::host::detector::check;
using namespace lm::check;

// 715827882 x 3 = 2147483646 bytes; one pixel more makes 2147483649, above 2147483647.
TEST(CheckLimits, TheLargestFrameIsAccepted) {
  EXPECT_FALSE(for_plugin("{}", cv::Size(715'827'882, 1)).refused());
  EXPECT_TRUE(for_plugin("{}", cv::Size(715'827'883, 1)).refused());
}

// 2 x 2500 points at 640 x 360 pixels are above 1e9; 2500 would be below.
TEST(CheckLimits, ExclusionRegionsCountTwiceInTheWorkThatIsTooMuch) {
  std::string points;
  for (int i = 0; i < 2500; ++i) points += std::string(i == 0 ? "" : ",") + R"({"x":"0.5","y":"0.5"})";
  const Verdict verdict = for_plugin(R"({"ror":[{"points":[)" + points + "]}]}", cv::Size(640, 360));
  EXPECT_EQ(lm::host::check::finding_on(verdict, "").text,
            "too many pixels and points to check what the regions cover");
}

TEST(CheckLimits, MemoryIsShownInGigabytesFromTenOn) {
  EXPECT_EQ(memory_text(9'999'400'000), "9999 MB");
  EXPECT_EQ(memory_text(10'000'000'000), "10 GB");
}

// A saw of 300 teeth along the top, closed below; then two neighbouring corners in the wrong order.
TEST(CheckLimits, OutlinesOfHundredsOfPointsAreChecked) {
  std::vector<Corner> corners;
  for (int i = 0; i < 600; ++i) corners.push_back({static_cast<float>(i) / 600, i % 2 == 0 ? 0.0F : 0.1F});
  corners.push_back({1, 1});
  corners.push_back({0, 1});
  EXPECT_FALSE(firstCrossing(corners));
  std::swap(corners[300], corners[302]);
  EXPECT_TRUE(firstCrossing(corners));
}

TEST(CheckLimits, AKeyIsNearWhenAThirdOfItsCharactersDiffer) {
  EXPECT_EQ(nearest("abcde", {"abcxy"}), "abcxy") << "two of five";
  EXPECT_EQ(nearest("abcde", {"abxyz"}), "") << "three of five";
}

// 37 of 40 bytes are kept: a quotation mark, 35 letters and the first byte of a character of two.
TEST(CheckLimits, LongValuesAreNotCutWithinACharacter) {
  const std::string letters(35, 'a');
  EXPECT_EQ(shown(Json::Value(letters + "\u00fc\u00fc\u00fc")), "\"" + letters + "...");
}

}  // namespace
