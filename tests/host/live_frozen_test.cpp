// Pictures that stay the same, with simulated connections and clocks.
#include <gtest/gtest.h>

#include "host/base/failure.h"
#include "host/source/av.h"
#include "host/source/live/live_source.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::source;
using namespace lm::host::source::live;
using namespace std::chrono_literals;

// A frame each second, from the first second on; 'n': another picture, 'r': the same again.
class Pictures : public Source {
 public:
  Pictures(std::string pictures, Deadline::Clock::time_point& now)
      : pictures_(std::move(pictures)), now_(now) {
    info_.live = true;
  }
  const SourceInfo& info() const override { return info_; }
  bool next(Frame& frame) override {
    if (number_ == pictures_.size()) return false;
    now_ += 1s;
    frame = {};
    frame.number = static_cast<std::int64_t>(number_);
    frame.time = std::chrono::seconds(number_);
    frame.repeated = pictures_[number_++] == 'r';
    return true;
  }

 private:
  SourceInfo info_;
  std::string pictures_;
  Deadline::Clock::time_point& now_;
  std::size_t number_ = 0;
};

struct Watched {
  std::vector<Frame> frames;
  std::vector<std::string> states;  // "frozen 1000: why", with the milliseconds at which it began
};

std::string text_of(const SourceState& state) {
  const char* const names[] = {"connected", "lost", "reconnecting", "frozen"};
  const auto since = std::chrono::round<std::chrono::milliseconds>(state.since.time_since_epoch());
  return std::string(names[static_cast<int>(state.camera)]) + " " + std::to_string(since.count()) +
         (state.reason.empty() ? "" : ": " + state.reason);
}

Watched watch(const std::string& pictures, std::chrono::microseconds limit) {
  Watched watched;
  Deadline::Clock::time_point now{};
  LiveSource::Surroundings surroundings;
  surroundings.now = [&] { return now; };
  surroundings.wall = [&] {
    return LiveSource::WallTime(
        std::chrono::duration_cast<LiveSource::WallTime::duration>(now.time_since_epoch()));
  };
  Reading reading;
  reading.patience = 0s;
  reading.frozen = limit;
  LiveSource source(
      std::make_unique<Pictures>(pictures, now),
      []() -> std::unique_ptr<Source> { throw Failure(kTrouble, "refused"); }, reading, std::stop_source(),
      surroundings);
  source.set_state_listener([&](const SourceState& state) { watched.states.push_back(text_of(state)); });
  for (Frame frame; source.next(frame);) watched.frames.push_back(frame);
  watched.states.pop_back();  // lost at the end
  return watched;
}

// The last new picture is at 1 s; at 4 s it has been there for 3 s; at 7 s there is another.
TEST(FrozenPicture, IsReportedAfterItsTimeAndNotForwarded) {
  const Watched watched = watch("nrrrrrnn", 3s);
  EXPECT_EQ(watched.states,
            (std::vector<std::string>{"frozen 1000: no change for 3.000 s", "connected 7000"}));
  for (const Frame& frame : watched.frames) EXPECT_TRUE(frame.number < 3 || frame.number > 5) << frame.number;
}

// Frames not taken in time are dropped, and pass on their note.
TEST(FrozenPicture, IsFollowedByAnInterruption) {
  const Watched watched = watch("nrrrrrnn", 3s);
  int anew = 0;
  for (const Frame& frame : watched.frames) {
    anew += frame.anew ? 1 : 0;
    EXPECT_EQ(frame.anew, frame.note == "the picture was frozen for 6.000 s") << frame.note;
  }
  EXPECT_EQ(anew, 1);
}

TEST(FrozenPicture, IsOneThatStaysTheSameWithoutAPause) {
  EXPECT_EQ(watch("nrrnrrnrrn", 3s).states, std::vector<std::string>{});
  EXPECT_EQ(watch("nrrrn", 3s).states.size(), 2U);
}

TEST(FrozenPicture, IsNoneWithALimitOfZero) {
  const Watched watched = watch("nrrrrrrrrr", 0s);
  EXPECT_EQ(watched.states, std::vector<std::string>{});
  EXPECT_EQ(watched.frames.back().number, 9);
}

av::Picture grey_picture(int width, AVPixelFormat format = AV_PIX_FMT_YUV420P) {
  av::Picture picture = av::new_picture({width, 5}, format);
  for (int plane = 0; plane < 3; ++plane) {
    const int rows = plane == 0 ? 5 : 3;
    std::memset(picture->data[plane], 128, static_cast<std::size_t>(picture->linesize[plane] * rows));
  }
  return picture;
}

TEST(AreSame, ComparesEveryPixelOfEveryPlaneAndNoPadding) {
  const av::Picture a = grey_picture(7);
  const av::Picture b = grey_picture(7);
  for (const auto& [plane, width, height] : {std::tuple{0, 7, 5}, {1, 4, 3}, {2, 4, 3}}) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        std::uint8_t& pixel = b->data[plane][y * b->linesize[plane] + x];
        pixel = 129;
        EXPECT_FALSE(av::are_same(*a, *b)) << plane << " " << x << " " << y;
        pixel = 128;
      }
      if (b->linesize[plane] > width) b->data[plane][y * b->linesize[plane] + width] = 129;
    }
  }
  EXPECT_TRUE(av::are_same(*a, *b));
}

TEST(AreSame, IsFalseForAnotherSizeOrFormatOrNoPicture) {
  const av::Picture a = grey_picture(8);
  EXPECT_FALSE(av::are_same(*a, *grey_picture(7)));
  EXPECT_FALSE(av::are_same(*a, *grey_picture(8, AV_PIX_FMT_YUVJ420P)));
  EXPECT_FALSE(av::are_same(*a, *av::new_picture()));
}

}  // namespace
