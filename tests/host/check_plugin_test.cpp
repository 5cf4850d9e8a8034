// Compares verdicts with the plug-in itself.
#include <gmock/gmock.h>
#include <malloc.h>

#include <opencv2/imgproc.hpp>

#include "host/base/json_text.h"
#include "host/base/standard_streams.h"
#include "host/detector/document.h"
#include "host/detector/plugin.h"
#include "tests/host/check_findings.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::check;
using namespace lm::host::detector;

const cv::Size kFrame(160, 120);

// What a host adds before the first frame: the size, if no text states one, and the regions.
std::string with_frame(const std::string& text, cv::Size frame) {
  Json::Value document = readDocument(text);
  const Json::Value added = readDocument(plugin_document("{}", frame));
  for (const char* key : {"frmW", "frmH", "frmChn"}) {
    if (document[key].isIntegral()) document[key] = document[key].asString();
    if (!document[key].isString()) document[key] = added[key];
    if (std::stoi(document[key].asString()) != std::stoi(added[key].asString()))
      throw std::invalid_argument(key);
  }
  if (!document.isMember("roi")) document["roi"] = added["roi"];
  return verbatim_json(document);
}

// The plug-in's own message if it refuses.
std::string refusal(Plugin& plugin, const std::string& text) {
  try {
    return plugin.start(with_frame(text, kFrame));
  } catch (const std::logic_error& misfit) {
    return misfit.what();
  }
}

// Whether a bright block of 40 x 40 pixels that visits every part of the frame is found.
bool finds_motion(Plugin& plugin) {
  CapturedStream chatter(stderr);
  bool found = false;
  for (int i = 0; i < 24; ++i) {
    cv::Mat frame(kFrame, CV_8UC3, cv::Scalar::all(60));
    if (i > 1) cv::rectangle(frame, cv::Rect(40 * (i % 4), 40 * (i % 3), 40, 40), cv::Scalar::all(220), -1);
    found |= !plugin.process(frame.data, std::to_string(1 + 40 * i)).empty();
  }
  return found;
}

class CheckAgainstPlugin : public testing::TestWithParam<const char*> {};

using CheckRefused = CheckAgainstPlugin;
TEST_P(CheckRefused, ThePluginRefusesItToo) {
  Plugin plugin(LIGHTMOTION_PLUGIN);
  EXPECT_NE(refusal(plugin, GetParam()), "");
  EXPECT_TRUE(for_plugin(GetParam(), kFrame).refused());
}

INSTANTIATE_TEST_SUITE_P(
    All, CheckRefused,
    testing::Values("", "{", "[]", "{} {}", R"({"sensitivity": "high"})", R"({"lcAdap": "99999999999"})",
                    R"({"lifeStatic": "x"})", R"({"minBoxW": "wide"})", R"({"minBoxH": "1e99"})",
                    R"({"minBoxH": "1e-60"})", R"({"maxBoxH": "any", "lifeStatic": " "})", R"({"frmW": "0"})",
                    R"({"frmH": "-5"})", R"({"frmW": "wide"})", R"({"frmChn": ""})", R"({"frmW": "161"})",
                    R"({"frmH": 121})", R"({"frmW": 12345678901})", R"({"frmChn": "4"})", R"({"roi": []})",
                    R"({"roi": null})", R"({"roi": {}})", R"({"roi": "all"})", R"({"roi": [3]})",
                    R"({"ror": [[]]})", R"({"roi": [{"points": [[0, 1], [1, 1], [1, 0]]}]})",
                    R"({"roi": [{"points": [null, {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
                    R"({"roi": [{"points": [{"x": 0}, {"x": 0, "y": 1}, {"x": 1, "y": 0}]}]})",
                    R"({"ror": [{"points": [{"x": "a", "y": 0}]}]})",
                    R"({"ror": [{"points": [{"x": [], "y": 0}]}]})",
                    R"({"ror": [{"points": [{"x": true, "y": 0}]}]})",
                    R"({"ror": [{"points": [{"x": 0, "y": "1e99"}]}]})"));

using CheckUseless = CheckAgainstPlugin;
TEST_P(CheckUseless, ThePluginTakesItAndFindsNothing) {
  Plugin plugin(LIGHTMOTION_PLUGIN);
  ASSERT_EQ(refusal(plugin, GetParam()), "");
  EXPECT_FALSE(finds_motion(plugin));
  EXPECT_TRUE(for_plugin(GetParam(), kFrame).refused());
}

// The last one: a region of 80 x 60 pixels and a minimum box of 144 x 108.
INSTANTIATE_TEST_SUITE_P(
    All, CheckUseless,
    testing::Values(
        R"({"lifeStatic": "-1"})", R"({"lifeStatic": "-100000"})", R"({"roi": [{}]})", R"({"roi": [null]})",
        R"({"roi": [{"points": [{"x": "a"}, {"x": "b"}]}]})",
        R"({"roi": [{"points": [{"x": 0, "y": 0}, {"x": 0.5, "y": 0.5}, {"x": 1, "y": 1}, {"x": 0.5, "y": 0.5}]}]})",
        R"({"roi": [{"points": [{"x": 2, "y": 0}, {"x": 3, "y": 0}, {"x": 3, "y": 1}]}]})",
        R"({"ror": [{"points": [{"x": -1, "y": 0}, {"x": 1, "y": 0}, {"x": 1, "y": 1}, {"x": -1, "y": 1}]}]})",
        R"({"minBoxW": "0.9", "minBoxH": "0.9", "roi": [{"points": [{"x": 0.25, "y": 0.25},
            {"x": 0.75, "y": 0.25}, {"x": 0.75, "y": 0.75}, {"x": 0.25, "y": 0.75}]}]})"));

using CheckAccepted = CheckAgainstPlugin;
TEST_P(CheckAccepted, ThePluginTakesItAndFindsWhatMoves) {
  Plugin plugin(LIGHTMOTION_PLUGIN);
  ASSERT_EQ(refusal(plugin, GetParam()), "");
  EXPECT_TRUE(finds_motion(plugin));
  EXPECT_FALSE(for_plugin(GetParam(), kFrame).refused());
}

INSTANTIATE_TEST_SUITE_P(
    All, CheckAccepted,
    testing::Values(
        "{}", "// mine\n{\"comment\": 1}", R"({"sensitivity": "9", "lcAdap": "0"})",
        R"({"sensitivity": 5, "lcAdap": null, "minBoxW": [], "lifeStatic": true})",
        R"({"sensitivity": "", "lcAdap": " ", "minBoxW": "5abc"})", R"({"lifeStatic": "5"})",
        R"({"minBoxW": "nan", "minBoxH": "7"})", R"({"maxBoxW": "any"})", R"({"frmW": 160, "frmH": "120px"})",
        R"({"frmW": null, "frmChn": 3.0})", R"({"ror": 7})", R"({"ror": [null, {}, {"points": 3}]})",
        R"({"roi": [{"points": [{"x": "0,1", "y": "0"}, {"x": "1", "y": ".0"}, {"x": 1, "y": " 1"}, {"x": 0, "y": 1}],
                     "name": 7}, {"points": [{"x": []}]}]})",
        R"({"minBoxW": "0.9", "minBoxH": "0.9", "roi": [{"points": [{"x": 0.25, "y": 0.25},
            {"x": 1, "y": 0.25}, {"x": 1, "y": 0.75}, {"x": 0.25, "y": 0.75}]}]})"));

// As counted by the C library; a sanitizer's allocator does not count.
TEST(CheckMemory, IsWhatThePluginTakesOnceItRuns) {
  const cv::Size kLarge(640, 360);
  const auto allocated = [] {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
  };
  const cv::Mat frame(kLarge, CV_8UC3, cv::Scalar::all(60));
  Plugin plugin(LIGHTMOTION_PLUGIN);
  const std::size_t before = allocated();
  ASSERT_EQ(plugin.start(plugin_document("{}", kLarge)), "");
  CapturedStream chatter(stderr);
  for (const char* time : {"1", "41", "81"}) plugin.process(frame.data, time);
  const std::size_t taken = allocated() - before;
  if (allocated() == 0) GTEST_SKIP() << "the allocator of the sanitizers counts nothing";
  EXPECT_NEAR(static_cast<double>(for_plugin("{}", kLarge).effective->memory), static_cast<double>(taken),
              0.05 * static_cast<double>(taken));
}

}  // namespace
