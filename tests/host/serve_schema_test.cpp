// Checks the server's answers against their schema.
#include <gtest/gtest.h>

#include "tests/host/program.h"
#include "tests/host/schemas.h"
#include "tests/host/serve_page.h"

namespace {

using serve::Page;

std::string frame_of(const serve::Answer& answer) { return answer.headers.find("Lightmotion-Frame")->second; }

TEST(ServeSchema, HoldsForEveryAnswer) {
  if (!schemas::available()) GTEST_SKIP() << "needs python3-jsonschema";
  const program::Folder folder;
  Page page({.config = folder / "c.json"});
  page.post("/api/play", R"({"playing":false,"time":6})");
  page.picture_with([](const Json::Value& about) { return !about["boxes"].empty(); });
  page.post("/api/compare", R"({"configuration":"{}"})");
  page.picture_with([](const Json::Value& about) { return about.isMember("baseline"); });
  const auto shot = frame_of(page.get("/api/frame?after=-1&viewer=a"));
  EXPECT_NE(shot.find("baseline"), std::string::npos);
  EXPECT_EQ(schemas::fault("serve", {shot}, "frame"), "");
  EXPECT_EQ(schemas::fault("serve", {frame_of(page.get("/api/still?time=1"))}, "still"), "");
  EXPECT_EQ(schemas::fault("serve", {page.get("/api/state").body}, "state"), "");
  EXPECT_EQ(schemas::fault("serve", {page.get("/api/events").body}, "events"), "");
  EXPECT_EQ(
      schemas::fault("serve", {page.post("/api/save", "{}").body, page.post("/api/save", "{}").body}, "save"),
      "");
  EXPECT_EQ(schemas::fault("serve", {page.post("/api/apply", R"({"a":1})").body}, "apply"), "");
  EXPECT_EQ(schemas::fault("serve", {page.post("/api/apply", "{").body, page.get("/api/no").body}, "error"),
            "");
  EXPECT_EQ(schemas::fault("check", {page.post("/api/check", "{}").body}), "");
}

}  // namespace
