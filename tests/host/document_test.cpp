#include "host/detector/document.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <sstream>
#include <stdexcept>

#include "host/detector/check/check.h"

namespace {

using namespace lm::host::detector;

Json::Value completed(const std::string& text, cv::Size frame = {640, 360}) {
  Json::Value document;
  std::istringstream(plugin_document(text, frame)) >> document;
  return document;
}

std::string refusal(const std::string& text) {
  try {
    plugin_document(text, {640, 360});
    return "accepted";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(Document, TakesOmittedSizesFromTheSourceAsTexts) {
  const Json::Value document = completed("{}");
  EXPECT_EQ(document["frmW"], Json::Value("640"));
  EXPECT_EQ(document["frmH"], Json::Value("360"));
  EXPECT_EQ(document["frmChn"], Json::Value("3"));
}

TEST(Document, MayStateAnySizeWhileTheSourceIsNotKnown) {
  EXPECT_EQ(completed(R"({"frmW": "128"})", {})["frmW"], "128");
  EXPECT_EQ(completed(R"({"frmH": 96})", {})["frmH"], "96");
  EXPECT_EQ(completed("{}", {})["frmW"], "640") << "as in the built-in scene";
}

TEST(Document, KeepsSizesThatFitAsTheyAreWritten) {
  EXPECT_EQ(completed(R"({"frmW": " 640px"})")["frmW"], Json::Value(" 640px"));
}

TEST(Document, TurnsSizesGivenAsNumbersIntoTexts) {
  EXPECT_EQ(completed(R"({"frmH": 360})")["frmH"], Json::Value("360"));
}

TEST(Document, RefusesSizesThatDoNotFitTheSource) {
  EXPECT_EQ(refusal(R"({"frmW": "641"})"), "\"frmW\" is 641 but the source's frames have 640");
  EXPECT_EQ(refusal(R"({"frmH": 361})"), "\"frmH\" is 361 but the source's frames have 360");
  EXPECT_EQ(refusal(R"({"frmChn": "1"})"), "\"frmChn\" is 1 but the source's frames have 3");
}

TEST(Document, LeavesASizeThatHoldsNoNumberForThePluginToRefuse) {
  EXPECT_EQ(completed(R"({"frmW": "wide"})")["frmW"], Json::Value("wide"));
}

// The plug-in counts a point as inside if an odd number of the region's edges is at or to the right of it in
// its row; an edge extends from the row of its upper end to the row before that of its lower end. Every pixel
// of the frame must be inside, including column 0 and the last row, at any size.
TEST(Document, CoversTheWholeFrameWhereNoRegionIsGiven) {
  const Json::Value points = completed("{}")["roi"][0]["points"];
  for (const cv::Size size : {cv::Size(1, 1), cv::Size(3, 2), cv::Size(640, 360)}) {
    for (const cv::Point pixel :
         {cv::Point(0, 0), cv::Point(size.width - 1, 0), cv::Point(0, size.height - 1),
          cv::Point(size.width - 1, size.height - 1)}) {
      int edges = 0;
      for (Json::ArrayIndex i = 0; i < points.size(); ++i) {
        const Json::Value& a = points[i];
        const Json::Value& b = points[(i + 1) % points.size()];
        const int ax = static_cast<int>(static_cast<float>(size.width) * std::stof(a["x"].asString()));
        const int ay = static_cast<int>(static_cast<float>(size.height) * std::stof(a["y"].asString()));
        const int bx = static_cast<int>(static_cast<float>(size.width) * std::stof(b["x"].asString()));
        const int by = static_cast<int>(static_cast<float>(size.height) * std::stof(b["y"].asString()));
        if (ay == by) continue;
        ASSERT_EQ(ax, bx) << "a rectangle's other edges are upright";
        edges += std::min(ay, by) <= pixel.y && pixel.y < std::max(ay, by) && ax >= pixel.x ? 1 : 0;
      }
      EXPECT_EQ(edges % 2, 1) << pixel << " of " << size;
    }
  }
}

TEST(Document, KeepsGivenRegionsAndAllOtherMembers) {
  const Json::Value document =
      completed(R"({"roi": [], "ror": true, "sensitivity": "5", "note": {"a": [1, null]}})");
  EXPECT_EQ(document["roi"], Json::Value(Json::arrayValue));
  EXPECT_EQ(document["ror"], Json::Value(true));
  EXPECT_EQ(document["sensitivity"], Json::Value("5"));
  EXPECT_EQ(document["note"]["a"][0], Json::Value(1));
}

TEST(Document, TurnsNumbersIntoTextsAndLeavesOutNulls) {
  const Json::Value document =
      completed(R"({"sensitivity": 5, "minBoxW": 0.25, "lcAdap": null, "roi": null, "frmW": 640.0})");
  EXPECT_EQ(document["sensitivity"], Json::Value("5"));
  EXPECT_EQ(document["minBoxW"], Json::Value("0.25"));
  EXPECT_EQ(document["frmW"], Json::Value("640"));
  EXPECT_FALSE(document.isMember("lcAdap"));
  EXPECT_EQ(document["roi"][0]["name"], Json::Value("frame"));
}

TEST(Document, RefusesKeysThatOnlyDetectorsByHandleKnow) {
  for (const char* key : {"absorb_seconds", "extent", "peel", "join_gap"}) {
    EXPECT_EQ(refusal(std::string("{\"") + key + "\": 1}"),
              std::string("\"") + key + "\" cannot be used with --plugin: plug-ins do not know it");
  }
  EXPECT_EQ(refusal(R"({"absorb_seconds": null, "format": "bgr"})"), "accepted");
}

TEST(Document, RefusesToAdapt) {
  EXPECT_EQ(refusal(R"({"absorb_seconds": 60, "adapt": true})"),
            "\"adapt\" cannot be used with --plugin: plug-ins do not adapt");
  EXPECT_FALSE(completed(R"({"adapt": false})").isMember("adapt"));
}

TEST(Document, AcceptsComments) {
  EXPECT_EQ(completed("// mine\n{\"lcAdap\": \"2\"}")["lcAdap"], Json::Value("2"));
}

TEST(Document, ReportsInOneLineWhereTheTextStopsBeingJson) {
  const std::string text = refusal("{\"sensitivity\": \"5\",\n \"lcAdap\" \"2\"}");
  EXPECT_TRUE(text.starts_with("line 2, column 11: not JSON: ")) << text;
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(Document, RefusesTextAfterItsEnd) { EXPECT_NE(refusal("{} {}").find("not JSON"), std::string::npos); }
TEST(Document, RefusesAnEmptyFile) { EXPECT_NE(refusal("").find("not JSON"), std::string::npos); }

// Found by fuzzing: an exception of the JSON library got out.
TEST(Document, RefusesJsonThatIsNestedTooDeeply) {
  for (const std::size_t depth : {1001U, 100'000U}) {
    EXPECT_EQ(refusal(std::string(depth, '[')), "nested too deeply") << depth;
  }
}

TEST(Document, RefusesJsonThatIsNotAnObject) {
  for (const char* text : {"[]", "5", "\"text\"", "null"})
    EXPECT_EQ(refusal(text), "not a JSON object") << text;
}

TEST(Document, TheDefaultIsCompleteAndWithoutFaults) {
  EXPECT_TRUE(check::check_document(default_document("").text, cv::Size(640, 360)).findings.empty());
}

}  // namespace
