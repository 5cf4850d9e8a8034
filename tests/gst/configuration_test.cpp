#include "gst/configuration.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include "gst/regions_text.h"

namespace lm::gst {
namespace {

std::string regions(const std::string& text) {
  Json::Value document(Json::objectValue);
  document["roi"] = "of the configuration";
  setRegions(document, text);
  Json::StreamWriterBuilder settings;
  settings["indentation"] = "";
  return Json::writeString(settings, document);
}

TEST(GstRegions, HaveANameAndPoints) {
  EXPECT_EQ(
      regions("front door: 0,0.5 1,0.5\t1,1 ;"),
      R"({"roi":[{"name":"front door","points":[{"x":"0","y":"0.5"},{"x":"1","y":"0.5"},{"x":"1","y":"1"}]}]})");
}

TEST(GstRegions, AnExclamationMarkExcludes) {
  EXPECT_EQ(
      regions("!tree:0,1; a:2,3"),
      R"({"roi":[{"name":"a","points":[{"x":"2","y":"3"}]}],"ror":[{"name":"tree","points":[{"x":"0","y":"1"}]}]})");
  EXPECT_EQ(regions(" ! : 0,1"), R"({"ror":[{"name":"","points":[{"x":"0","y":"1"}]}]})");
}

TEST(GstRegions, TheNameMayBeLeftOut) {
  EXPECT_EQ(regions("0,1 2,3"), R"({"roi":[{"name":"","points":[{"x":"0","y":"1"},{"x":"2","y":"3"}]}]})");
}

TEST(GstRegions, WhatIsNotAPointIsNamed) {
  for (const char* bad : {"a: 1", "a: ,1", "a: 1,", "a: 1 ,2"}) EXPECT_THROW(regions(bad), BadRegions) << bad;
}

TEST(GstConfiguration, OneTextIsPassedAsItIs) {
  const std::string text = "{ // comment\n \"peel\": 0 }";
  EXPECT_EQ(configurationOf({.config = text}, "").text, text);
  EXPECT_EQ(configurationOf({}, text).text, text);
  EXPECT_EQ(configurationOf({}, "").text, "{}");
}

TEST(GstConfiguration, TextsAndPropertiesAreMerged) {
  EXPECT_EQ(configurationOf({.config = R"({"b":2})", .sensitivity = -1}, R"({"a":1,"b":1})").text,
            R"({"a":1,"b":2,"sensitivity":-1})");
  EXPECT_EQ(configurationOf({.minBox = 0.05, .absorb = -1}, "").text,
            R"({"absorb_seconds":"forever","minBoxH":"0.05","minBoxW":"0.05"})");
}

TEST(GstConfiguration, ATextThatCannotBeReadIsPassedAlone) {
  const Configuration read = configurationOf({.config = "{", .sensitivity = 2}, "{}");
  EXPECT_EQ(read.text, "{");
  EXPECT_FALSE(read.document);
}

TEST(GstConfiguration, ChangesRestoreDefaultsWithNull) {
  Json::Value from(Json::objectValue);
  Json::Value to(Json::objectValue);
  from["gone"] = from["same"] = from["other"] = 1;
  to["same"] = 1;
  to["other"] = to["new"] = 2;
  EXPECT_EQ(changesBetween(from, to), R"({"gone":null,"new":2,"other":2})");
}

}  // namespace
}  // namespace lm::gst
