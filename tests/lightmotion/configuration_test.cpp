// What lightmotion_create says about configurations.
#include <gmock/gmock.h>

#include <array>
#include <tuple>

#include "tests/lightmotion/fixture.h"

namespace lm::test {
namespace {

using testing::HasSubstr;

constexpr const char* size = R"("frmW": 64, "frmH": 48, "format": "bgr")";

struct Case {
  std::string members;  // after the size
  std::string message;  // contained in it
};

std::string messageFor(const std::string& members, bool accepted) {
  const Created created = create(std::string("{") + size + ", " + members + "}");
  EXPECT_EQ(created.detector != nullptr, accepted) << members << created.message;
  return created.message;
}

TEST(Configuration, RefusedNamesTheKeyTheValueAndWhatIsRight) {
  for (const auto& [members, message] : {
           Case{R"("sensitivity": 2.5)", "\"sensitivity\": must be a whole number, not 2.5 (1 to 5, or -1)"},
           Case{R"("sensitivity": "high")",
                "\"sensitivity\": must be a whole number, not \"high\"; the detector refuses it (1 to 5, or "
                "-1)"},
           Case{R"("minBoxW": [1])", "\"minBoxW\": must be a number, not [1]"},
           Case{R"("lifeStatic": -1)", "\"lifeStatic\": -1 makes everything background at once"},
           Case{R"("absorb_seconds": 0.05)",
                "\"absorb_seconds\": 0.05 is out of range (0.1 to 86400 seconds, or \"forever\")"},
           Case{R"("absorb_seconds": "5 minutes")", "\"absorb_seconds\": \"5 minutes\" is not a time"},
           Case{R"("absorb_seconds": "nan")", "\"absorb_seconds\": \"nan\" is out of range"},
           Case{R"("absorb_seconds": 86401)", "\"absorb_seconds\": 86401 is out of range"},
           Case{R"("extent": "whole")",
                "\"extent\": \"whole\" is not an extent (\"core\", \"full\" or \"object\")"},
           Case{R"("extent": 1)", "\"extent\": 1 is not an extent"},
           Case{R"("join_gap": 1.5)",
                "\"join_gap\": 1.5 is out of range (0 to 1, of the frame's longer side)"},
           Case{R"("join_gap": "-0.1")", "\"join_gap\": \"-0.1\" is out of range"},
           Case{R"("join_gap": "nan")", "\"join_gap\": \"nan\" is out of range"},
           Case{R"("join_gap": "near")", "\"join_gap\": \"near\" is not a number"},
           Case{R"("join_gap": true)", "\"join_gap\": true is not a number"},
           Case{R"("peel": 4)", "\"peel\": 4 is out of range (0 to 3)"},
           Case{R"("peel": -1)", "\"peel\": -1 is out of range (0 to 3)"},
           Case{R"("peel": "2 layers")", "\"peel\": must be a whole number, not \"2 layers\" (0 to 3)"},
           Case{R"("roi": [])", "\"roi\": contains no region; the detector refuses"},
           Case{R"("roi": [{"points": [{"x": "left", "y": 0}, {"x": 1, "y": 0}, {"x": 1, "y": 1}]}])",
                "\"roi[0].points[0].x\": must be a number, not \"left\"; the detector refuses it"},
           Case{R"("roi": [3])", "\"roi[0]\": 3 is not a region; the detector refuses it"},
           Case{R"("roi": [{"points": []}])", "\"roi\": nothing is watched"},
           Case{R"("frmChn": 4)", "\"frmChn\": is 4 but \"bgr\" has 3"},
       }) {
    EXPECT_THAT(messageFor(members, false), HasSubstr(message));
  }
}

TEST(Configuration, AcceptedWithWarnings) {
  for (const auto& [members, message] : {
           Case{R"("sensitivty": 3)", "\"sensitivty\": unknown key, ignored (did you mean \"sensitivity\"?)"},
           Case{R"("sensitivity": "5 of 5")", "\"sensitivity\": \"5 of 5\" is read as 5"},
           Case{R"("lcAdap": 0)", "\"lcAdap\": 0 is out of range: the values of level 3 are used (1 to 5)"},
           Case{R"("lcAdap": 0, "lcAdap": 2)", "\"lcAdap\": appears twice"},
           Case{R"("lifeStatic": 0, "absorb_seconds": 5)", "absorb_seconds replaces it"},
           Case{R"("maxBoxW": 1)", "\"maxBoxW\": has no effect: the detector reads it but never uses it"},
           Case{R"("extent": "object", "join_gap": 0.01)",
                "\"join_gap\": has no effect with the extent \"object\" (remove it)"},
           Case{R"("minBoxH": 0.001)", "\"minBoxH\": is less than a pixel"},
       }) {
    EXPECT_THAT(messageFor(members, true), HasSubstr(message));
  }
}

TEST(Configuration, AcceptedWithoutAWord) {
  for (
      const std::string members :
      {R"("sensitivity": 5, "lcAdap": 5.0)", R"("sensitivity": "-1")", R"("absorb_seconds": "forever")",
       R"("absorb_seconds": "60", "extent": "full", "peel": 0, "join_gap": "0.01")", R"("frmChn": 3)",
       R"("comment": {})", R"("extent": "object", "join_gap": null)",
       R"("roi": null, "ror": null, "sensitivity": null, "peel": null, "extent": null, "absorb_seconds": null)",
       R"("ror": [{"points": [{"x": 0, "y": 0}, {"x": 0.5, "y": 0}, {"x": 0.5, "y": 0.5}]}])"}) {
    EXPECT_EQ(messageFor(members, true), "");
  }
}

TEST(Configuration, NumbersAreAsTheirTexts) {
  const auto frames = framesOf({{64, 48, 3}, Kind::passing, 3}, 20);
  const Detector numbers = made(
      R"({"frmW": 64, "frmH": 48, "frmChn": 3, "sensitivity": 5, "lcAdap": 2, "minBoxW": 0.125, "minBoxH": 0.125,
          "roi": [{"points": [{"x": -1, "y": -1}, {"x": 0.75, "y": -1}, {"x": 0.75, "y": 2}, {"x": -1, "y": 2}]}]})");
  const Detector texts = made(
      R"({"frmW": "64", "frmH": "48", "frmChn": "3", "sensitivity": "5", "lcAdap": "2", "minBoxW": "0.125",
          "minBoxH": "0.125", "roi": [{"points": [{"x": "-1", "y": "-1"}, {"x": "0.75", "y": "-1"},
                                                  {"x": "0.75", "y": "2"}, {"x": "-1", "y": "2"}]}]})");
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const int time = 40 * static_cast<int>(i);
    EXPECT_EQ(feed(numbers, frames[i], time), feed(texts, frames[i], time));
  }
}

TEST(Configuration, OfSeveralLinesIsQuotedByLine) {
  EXPECT_THAT(create("{\"frmW\": 64,\n \"frmH\": 0,\n \"format\": \"bgr\"}").message,
              testing::StrEq("line 2: \"frmH\": 0 is refused (1 or more)"));
}

TEST(Configuration, WithoutSizeOrFormatIsRefused) {
  const std::string message = create("{}").message;
  EXPECT_EQ(
      message,
      "\"frmW\": is missing (the frame size in pixels)\n\"frmH\": is missing (the frame size in pixels)\n"
      "\"format\": is missing (\"grey\", \"bgr\", \"rgb\", \"bgrx\", \"rgbx\", \"i420\", \"nv12\")");
  for (const char* text : {"", "x", "[]", "3", "{\"frmW\": 1} x", "{\"frmW\"", "\"frmW\""}) {
    EXPECT_NE(create(text).message, "") << text;
  }
}

// 26843546 x 80 filled up to rows of 96 pixels.
TEST(Configuration, OfFramesThatAreTooLargeIsRefused) {
  EXPECT_THAT(create(R"({"frmW": 80, "frmH": 22369621, "frmChn": 1})").message, testing::IsEmpty());
  EXPECT_THAT(create(R"({"frmW": 80, "frmH": 22369622, "frmChn": 1})").message,
              HasSubstr("frames of 80 x 22369622 pixels are too large"));
  EXPECT_THAT(create(R"({"frmW": 2147483647, "frmH": 2147483647, "frmChn": 1})").message,
              HasSubstr("too large"));
}

// ---- lightmotion_create_for -------------------------------------------------------------------------------

std::string messageOfFor(const char* document, int width, int height, int format) {
  std::array<char, 500> message{};
  const Detector detector(
      lightmotion_create_for(document, width, height, format, message.data(), message.size()));
  EXPECT_EQ(detector == nullptr, message[0] != '\0');
  return message.data();
}

TEST(ConfigurationForFrames, LeavesOutWhatIsKnown) {
  EXPECT_EQ(messageOfFor(nullptr, 64, 48, LIGHTMOTION_FORMAT_GREY), "");
  EXPECT_EQ(messageOfFor("{}", 64, 48, LIGHTMOTION_FORMAT_NV12), "");
  EXPECT_EQ(messageOfFor(R"({"frmW": 64, "frmChn": 3})", 0, 48, 0), "");
  EXPECT_EQ(messageOfFor(R"({"frmW": 64, "frmH": 48, "frmChn": 3})", 64, 48, LIGHTMOTION_FORMAT_RGB), "");
  const Detector detector(lightmotion_create_for("{}", 64, 48, LIGHTMOTION_FORMAT_RGB, nullptr, 0));
  EXPECT_EQ(infoOf(detector).format, LIGHTMOTION_FORMAT_RGB);
  EXPECT_EQ(infoOf(detector).width, 64);
}

TEST(ConfigurationForFrames, RefusesContradictions) {
  EXPECT_EQ(messageOfFor(R"({"frmW": 65})", 64, 48, LIGHTMOTION_FORMAT_BGR),
            "\"frmW\": is 65 but the frames have 64 (remove it to use that of the frames)");
  EXPECT_THAT(messageOfFor(R"({"format": "rgb"})", 64, 48, LIGHTMOTION_FORMAT_BGR),
              HasSubstr("\"format\": is \"rgb\" but the frames are \"bgr\""));
  EXPECT_THAT(messageOfFor(R"({"frmChn": 1})", 64, 48, LIGHTMOTION_FORMAT_BGR),
              HasSubstr("\"frmChn\": is 1 but \"bgr\" has 3"));
  EXPECT_NE(messageOfFor("{}", -1, 48, LIGHTMOTION_FORMAT_BGR), "");
  EXPECT_NE(messageOfFor("{}", 64, 48, 8), "");
  EXPECT_NE(messageOfFor("{}", 64, 48, -1), "");
}

}  // namespace
}  // namespace lm::test
