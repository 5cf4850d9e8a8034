// Compares the engine with the plain model, field by field, on real footage.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "host/source/source.h"
#include "tests/system/driver.h"

namespace {

// The clip's first frames, as blue, green, red.
Sequence sequenceOf(const std::string& file, int frames) {
  const std::shared_ptr<lm::host::source::Source> source = lm::host::source::open_source(file);
  const cv::Size size = source->info().size;
  const auto next = [source](int number) {
    lm::host::source::Frame frame;
    EXPECT_TRUE(source->next(frame)) << "frame " << number;
    const std::uint8_t* pixels = frame.image.data;
    const std::size_t bytes = frame.image.total() * frame.image.elemSize();
    return Frame{{pixels, pixels + bytes}, 3, std::to_string(1 + number * 100)};
  };
  return {.name = "street",
          .width = size.width,
          .height = size.height,
          .frames = frames,
          .frame = next,
          .entries = {"sensitivity 4", "lcAdap 3"},
          .configuredBy = ConfiguredBy::document};
}

TEST(StreetClip, EngineAndPlainModelAgreeInEveryFieldAfterEveryFrame) {
  const char* folder = std::getenv("LIGHTMOTION_CLIPS");
  if (folder == nullptr) GTEST_SKIP() << "LIGHTMOTION_CLIPS names no folder with street.avi";
  const std::string file = std::filesystem::path(folder) / "street.avi";
  EXPECT_EQ(compareOver(sequenceOf(file, 60)), "");
}

}  // namespace
