#include "host/detector/plugin.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "host/base/failure.h"
#include "host/base/standard_streams.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::detector;
using program::Folder;

template <typename Call>
std::string refusal(Call call) {
  try {
    call();
    return "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kRefused);
    return failure.what();
  }
}

TEST(Plugin, NamesAFileThatCannotBeLoaded) {
  const Folder folder;
  program::write(folder / "a.so", "no library");
  EXPECT_NE(refusal([&] { Plugin plugin(folder / "a.so"); }).find(folder / "a.so"), std::string::npos);
  EXPECT_NE(refusal([&] { Plugin plugin(folder / "none.so"); }).find(folder / "none.so"), std::string::npos);
}

TEST(Plugin, NamesTheEntryPointThatALibraryLacks) {
  const std::string text = refusal([] { Plugin plugin("/lib/x86_64-linux-gnu/libm.so.6"); });
  EXPECT_EQ(text,
            "/lib/x86_64-linux-gnu/libm.so.6: not a lightmotion plug-in: it has no function initialization");
}

TEST(Plugin, GivesTheResultOfEachFrame) {
  Plugin plugin(LIGHTMOTION_FAKE_PLUGIN);
  ASSERT_EQ(plugin.start(R"({"comment": "pixel"})"), "");
  const unsigned char pixel = 64;
  EXPECT_EQ(plugin.process(&pixel, "1"), "");
  EXPECT_EQ(plugin.process(&pixel, "41"),
            "{\"object\":[{\"height\":0.250000,\"inRoi\":[],\"width\":0.1,\"x\":0.5,\"y\":0.25}],"
            "\"timestamp\":\"41\"}\n");
}

TEST(Plugin, ReportsARefusalInThePluginsWords) {
  Plugin plugin(LIGHTMOTION_FAKE_PLUGIN);
  EXPECT_EQ(one_line(plugin.start(R"({"comment": "refuse"})")), "Error: this document is refused");
  EXPECT_EQ(plugin.start(R"({"comment": "refuse mute"})"), "no reason given");
  EXPECT_EQ(plugin.start(R"({"comment": "throw"})"), "exception \"stoi\"");
}

TEST(Plugin, AnExceptionOnAFrameIsAFailure) {
  Plugin plugin(LIGHTMOTION_FAKE_PLUGIN);
  ASSERT_EQ(plugin.start(R"({"comment": "frame throws"})"), "");
  const unsigned char pixel = 0;
  for (int i = 0; i < 4; ++i) plugin.process(&pixel, "1");
  try {
    plugin.process(&pixel, "1");
    FAIL() << "nothing was thrown";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kTrouble);
    EXPECT_NE(std::string(failure.what()).find("exception \"stoll\""), std::string::npos);
  }
}

TEST(CapturedStream, KeepsWhatIsPrintedAndGivesTheStreamBack) {
  const Folder folder;
  std::FILE* stream = std::fopen((folder / "a").c_str(), "w");
  std::fputs("before ", stream);
  {
    CapturedStream captured(stream);
    std::fprintf(stream, "%s", std::string(10'000, 'x').c_str());
    EXPECT_EQ(captured.text(), std::string(10'000, 'x'));
  }
  std::fputs("after", stream);
  std::fclose(stream);
  EXPECT_EQ(program::read(folder / "a"), "before after");
}

}  // namespace
