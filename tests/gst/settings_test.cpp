// Properties and configurations: what is in force, what is refused, and changes while playing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <thread>

#include "tests/gst/stream.h"

namespace lm::gst {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int frames = 25;
constexpr const char* bottom =
    R"([{"name":"bottom","points":[{"x":-1,"y":0.5},{"x":2,"y":0.5},{"x":2,"y":2},{"x":-1,"y":2}]}])";

void set(Stream& stream, const char* property, const std::string& value) {
  gst_util_set_object_arg(G_OBJECT(stream.element()), property, value.c_str());
}

void setText(Stream& stream, const char* property, const std::string& value) {
  g_object_set(stream.element(), property, value.c_str(), nullptr);
}

// Both from frame `from` on.
void expectSame(Stream& stream, Library& library, int from, int to) {
  for (int i = from; i < to; ++i) ASSERT_EQ(stream.frame(i), library.frame(i)) << i;
}

class File {
 public:
  explicit File(const std::string& text) : path_(::testing::TempDir() + "lightmotion-gst-XXXXXX") {
    close(mkstemp(path_.data()));
    std::ofstream(path_) << text;
  }
  ~File() { std::remove(path_.c_str()); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

TEST(GstSettings, EveryPropertyIsAKeyOfTheConfiguration) {
  struct Row {
    const char* property;
    const char* value;
    const char* config;
  };
  const std::string roi = std::string(R"({"roi":)") + bottom + "}";
  for (const Row& row : {Row{"sensitivity", "1", R"({"sensitivity":1})"},
                         Row{"min-box", "0.6", R"({"minBoxW":0.6,"minBoxH":0.6})"},
                         Row{"absorb", "0.1", R"({"absorb_seconds":0.1})"},
                         Row{"absorb", "-1", R"({"absorb_seconds":"forever"})"},
                         Row{"regions", "bottom: -1,0.5 2,0.5 2,2 -1,2", roi.c_str()},
                         Row{"config", R"({"peel":0})", R"({"peel":0})"}}) {
    SCOPED_TRACE(row.property);
    Stream stream;
    setText(stream, "config", "{}");
    if (std::string(row.property) == "config" || std::string(row.property) == "regions") {
      setText(stream, row.property, row.value);
    } else {
      set(stream, row.property, row.value);
    }
    stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
    Library library(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY, {}, row.config);
    Library plain(GST_VIDEO_FORMAT_GRAY8, LIGHTMOTION_FORMAT_GREY);
    bool differs = false;
    for (int i = 0; i < frames; ++i) {
      const FoundBoxes boxes = stream.frame(i);
      ASSERT_EQ(boxes, library.frame(i)) << i;
      differs = boxes != plain.frame(i) || differs;
    }
    const bool same = std::string(row.property) == "sensitivity" || std::string(row.value) == "-1";
    EXPECT_TRUE(differs || same) << "the setting has no effect in this scene";
    EXPECT_THAT(stream.texts(GST_MESSAGE_WARNING), IsEmpty());
  }
}

TEST(GstSettings, PropertiesWinOverConfigAndConfigOverItsFile) {
  const File file(R"({"peel": 0, "minBoxW": 0.9, "minBoxH": 0.9, "absorb_seconds": 50})");
  Stream stream("absorb=0.1");
  setText(stream, "config-file", file.path());
  setText(stream, "config", R"({"minBoxW": 0.3, "minBoxH": 0.3, "absorb_seconds": 60})");
  stream.setFormat(GST_VIDEO_FORMAT_BGR);
  Library library(GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR, {},
                  R"({"peel": 0, "minBoxW": 0.3, "minBoxH": 0.3, "absorb_seconds": 0.1})");
  expectSame(stream, library, 0, frames);
}

TEST(GstSettings, WhatIsRefusedIsAnErrorWithTheLibrarysMessage) {
  struct Row {
    const char* property;
    const char* value;
    const char* message;
  };
  for (const Row& row :
       {Row{"config", R"({"sensitivity": "x"})", R"("sensitivity": must be a whole number, not "x")"},
        Row{"config", "{\n\"sensitivity\": 3,\n\"peel\": 7}",
            R"(line 3: "peel": 7 is out of range (0 to 3))"},
        Row{"config", "{\"sensitivity\": 3", "line 1, column 18: not JSON"},
        Row{"config", "[]", "not a JSON object"},
        Row{"config", R"({"frmW": 640})", R"("frmW": is 640 but the frames have 99)"},
        Row{"regions", "a: 0,0 1;0", R"(regions: "1" is not a point)"},
        Row{"regions", "a: 0,0 1,0 z,1", R"("roi[0].points[2].x": must be a number, not "z")"}}) {
    SCOPED_TRACE(row.value);
    Stream stream;
    setText(stream, row.property, row.value);
    stream.setFormat(GST_VIDEO_FORMAT_BGR);
    stream.frame(0);
    EXPECT_EQ(stream.flow(), GST_FLOW_ERROR);
    EXPECT_THAT(stream.texts(GST_MESSAGE_ERROR), ElementsAre(HasSubstr(row.message)));
  }
}

TEST(GstSettings, WhatIsProbablyNotMeantIsAWarning) {
  Stream stream;
  setText(stream, "config", R"({"sensitivty": 3})");
  stream.setFormat(GST_VIDEO_FORMAT_BGR);
  stream.frame(0);
  stream.frame(1);
  EXPECT_EQ(stream.flow(), GST_FLOW_OK);
  EXPECT_THAT(stream.texts(GST_MESSAGE_WARNING), ElementsAre(HasSubstr(R"("sensitivty": unknown key)")));
}

TEST(GstSettings, AFileThatCannotBeReadIsAnErrorAtTheStart) {
  Stream stream;
  gst_element_set_state(stream.harness()->element, GST_STATE_NULL);
  setText(stream, "config-file", "/missing/night.json");
  EXPECT_EQ(gst_element_set_state(stream.harness()->element, GST_STATE_PAUSED), GST_STATE_CHANGE_FAILURE);
  EXPECT_THAT(stream.texts(GST_MESSAGE_ERROR), ElementsAre(HasSubstr("/missing/night.json")));
}

TEST(GstSettings, ChangesWhilePlayingKeepWhatWasLearned) {
  Stream stream;
  setText(stream, "config", R"({"sensitivity": 5, "minBoxW": 0.1})");
  stream.setFormat(GST_VIDEO_FORMAT_BGR);
  Library library(GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR, {}, R"({"sensitivity": 5, "minBoxW": 0.1})");
  expectSame(stream, library, 0, 8);
  setText(stream, "regions", "bottom: -1,0.5 2,0.5 2,2 -1,2");
  library.change((std::string(R"({"roi":)") + bottom + "}").c_str());
  expectSame(stream, library, 8, 12);
  set(stream, "sensitivity", "1");
  set(stream, "min-box", "0.2");
  library.change(R"({"sensitivity": 1, "minBoxW": 0.2, "minBoxH": 0.2})");
  expectSame(stream, library, 12, 16);
  // Back to what the configuration says.
  setText(stream, "regions", "");
  set(stream, "sensitivity", "0");
  set(stream, "min-box", "0");
  library.change(R"({"roi": null, "sensitivity": 5, "minBoxW": 0.1, "minBoxH": null})");
  expectSame(stream, library, 16, 20);
  setText(stream, "config", R"({"peel": 0})");
  library.change(R"({"sensitivity": null, "minBoxW": null, "peel": 0})");
  expectSame(stream, library, 20, frames);
  EXPECT_THAT(stream.texts(GST_MESSAGE_WARNING), IsEmpty());
}

TEST(GstSettings, AFileThatIsSetWhilePlayingIsRead) {
  const File file(R"({"peel": 0})");
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_BGR);
  Library library(GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR);
  expectSame(stream, library, 0, 8);
  setText(stream, "config-file", file.path());
  library.change(R"({"peel": 0})");
  expectSame(stream, library, 8, 16);
  setText(stream, "config-file", "/missing/night.json");
  expectSame(stream, library, 16, frames);
  EXPECT_THAT(stream.texts(GST_MESSAGE_WARNING), ElementsAre(HasSubstr("/missing/night.json")));
}

TEST(GstSettings, AChangeThatIsRefusedIsAWarningAndChangesNothing) {
  for (const char* config : {R"({"peel": 7})", "{", R"({"frmW": 99})"}) {
    SCOPED_TRACE(config);
    Stream stream;
    stream.setFormat(GST_VIDEO_FORMAT_BGR);
    Library library(GST_VIDEO_FORMAT_BGR, LIGHTMOTION_FORMAT_BGR);
    expectSame(stream, library, 0, 8);
    setText(stream, "config", config);
    expectSame(stream, library, 8, 12);
    EXPECT_EQ(stream.texts(GST_MESSAGE_WARNING).size(), 1U);
    setText(stream, "config", R"({"peel": 0})");
    library.change(R"({"peel": 0})");
    expectSame(stream, library, 12, frames);
    EXPECT_THAT(stream.texts(GST_MESSAGE_WARNING), IsEmpty());
  }
}

TEST(GstSettings, PropertiesAreSetInOneThreadWhileAnotherPushesFrames) {
  Stream stream;
  stream.setFormat(GST_VIDEO_FORMAT_GRAY8);
  stream.frame(0);
  std::thread other([&] {
    for (int i = 0; i < 300; ++i) {
      set(stream, "sensitivity", std::to_string(1 + i % 5));
      setText(stream, "regions", i % 2 == 0 ? "bottom: -1,0.5 2,0.5 2,2 -1,2" : "");
      set(stream, "draw", i % 3 == 0 ? "true" : "false");
    }
  });
  for (int i = 1; i < 100; ++i) {
    stream.frame(i);
    EXPECT_EQ(stream.flow(), GST_FLOW_OK);
  }
  other.join();
  EXPECT_THAT(stream.texts(GST_MESSAGE_WARNING), IsEmpty());
}

TEST(GstSettings, PropertiesKeepWhatIsSet) {
  Stream stream;
  for (const auto& [name, value] : {std::pair{"sensitivity", "-1"},
                                    {"min-box", "0.25"},
                                    {"absorb", "12.5"},
                                    {"interval", "4"},
                                    {"hold", "750"},
                                    {"post-messages", "events"},
                                    {"draw", "true"},
                                    {"config", "{}"},
                                    {"regions", "a"},
                                    {"config-file", "b"}}) {
    GValue before = G_VALUE_INIT;
    g_object_get_property(G_OBJECT(stream.element()), name, &before);
    set(stream, name, value);
    GValue after = G_VALUE_INIT;
    g_object_get_property(G_OBJECT(stream.element()), name, &after);
    GValue expected = G_VALUE_INIT;
    g_value_init(&expected, G_VALUE_TYPE(&after));
    EXPECT_TRUE(gst_value_deserialize(&expected, value));
    EXPECT_EQ(gst_value_compare(&after, &expected), GST_VALUE_EQUAL) << name;
    EXPECT_NE(gst_value_compare(&after, &before), GST_VALUE_EQUAL) << name;
    for (GValue* used : {&before, &after, &expected}) g_value_unset(used);
  }
  stream.texts(GST_MESSAGE_WARNING);
}

}  // namespace
}  // namespace lm::gst
