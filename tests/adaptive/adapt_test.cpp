// What "adapt" means: which documents adapt, what they leave out, the size of the analysis, and who adapts.
#include "host/detector/adapt.h"

#include <gmock/gmock.h>

#include "host/base/failure.h"
#include "host/detector/detector.h"
#include "host/detector/document.h"
#include "tests/adaptive/scene.h"

namespace lm::host::detector {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(Adapt, IsTrueOrNothing) {
  EXPECT_TRUE(adapts(std::string(R"({"adapt": true})")));
  for (const char* text : {"{}", R"({"adapt": false})", R"({"adapt": null})", R"({"adapt": "true"})",
                           R"({"adapt": 1})", "[]", "true", "", R"({"adapt": true)"}) {
    EXPECT_FALSE(adapts(std::string(text))) << text;
  }
}

TEST(Adapt, WhatIsLeftOutIsThatOfThePresetAuto) {
  const Json::Value all = completed(readDocument(R"({"adapt": true})"));
  Json::Value preset = readDocument(preset_document("auto").text);
  preset.removeMember("comment");
  for (const std::string& key : preset.getMemberNames()) EXPECT_EQ(all[key], preset[key]) << key;
  EXPECT_EQ(all["sensitivity"], 4) << "as long as the noise is not known";
  EXPECT_EQ(all["peel"], 3);
}

TEST(Adapt, WhatIsSetStays) {
  const char* const text = R"({"adapt": true, "sensitivity": "2", "peel": 0, "lcAdap": "5", "minBoxW": 0.5,
      "minBoxH": null, "extent": "core", "absorb_seconds": 5, "roi": [1]})";
  const Json::Value all = completed(readDocument(text));
  EXPECT_EQ(all["sensitivity"], "2");
  EXPECT_EQ(all["peel"], 0);
  EXPECT_EQ(all["lcAdap"], "5");
  EXPECT_EQ(all["minBoxW"], 0.5);
  EXPECT_EQ(all["minBoxH"], readDocument(preset_document("auto").text)["minBoxH"]) << "null is left out";
  EXPECT_EQ(all["extent"], "core");
  EXPECT_EQ(all["absorb_seconds"], 5);
  EXPECT_EQ(all["roi"].size(), 1U);
}

TEST(Adapt, LifeStaticIsNotReplacedByTheTimeOfThePreset) {
  EXPECT_FALSE(completed(readDocument(R"({"lifeStatic": "0"})")).isMember("absorb_seconds"));
}

TEST(Adapt, ChoosesTheAnalysisSizeUnlessItIsStated) {
  const source::live::Scale none;
  const auto half = *source::live::parse_scale("0.5");
  const char* const plain = R"({"adapt": true})";
  EXPECT_EQ(analysed_size(plain, {320, 240}, none), cv::Size(640, 480));
  EXPECT_EQ(analysed_size(plain, {320, 240}, half), cv::Size(160, 120)) << "--scale";
  EXPECT_EQ(analysed_size("{}", {320, 240}, none), cv::Size(320, 240));
  EXPECT_EQ(analysed_size(R"({"adapt": true, "frmW": "320"})", {320, 240}, none), cv::Size(320, 240));
  EXPECT_EQ(analysed_size(R"({"adapt": true, "frmH": 240})", {320, 240}, none), cv::Size(320, 240));
  EXPECT_EQ(analysed_size("not JSON", {320, 240}, none), cv::Size(320, 240));
}

TEST(Adapt, EveryDetectorByHandleDoesWhoseDocumentSaysSo) {
  const cv::Size frame(64, 48);
  EXPECT_THAT(make_detector("", {"", R"({"adapt": true})"}, frame)->chosen(), HasSubstr("analysed in 64x48"));
  EXPECT_THAT(make_detector("", default_document(""), frame)->chosen(), HasSubstr("analysed in 64x48"));
  EXPECT_THAT(make_detector("", {"", R"({"adapt": false})"}, frame)->chosen(), IsEmpty());
  EXPECT_THAT(make_detector("", preset_document("street"), frame)->chosen(), IsEmpty());
}

TEST(Adapt, ListenersHearWhatIsChosen) {
  const cv::Size frame(160, 120);
  const auto detector = make_detector("", default_document(""), frame);
  std::vector<std::string> lines;
  detector->set_listener([&](const std::string& line) { lines.push_back(line); });
  test::Camera camera(7, 3);
  const cv::Mat empty = test::ground(frame, 5);
  for (int i = 1; i <= 100; ++i) detector->process(camera.picture(empty), 40 * i);
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(lines.back(), HasSubstr("sensitivity 2"));
}

}  // namespace
}  // namespace lm::host::detector
