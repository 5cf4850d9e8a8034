// Reconnection, with simulated connections, clock and random numbers.
#include "host/source/live/live_source.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <utility>

#include "host/base/failure.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::source;
using namespace lm::host::source::live;
using namespace std::chrono_literals;
using Time = std::chrono::microseconds;

// Returns its frames 40 ms apart, each after the previous one was taken, and then ends. `wait`: called before
// the first.
class Connection : public Source {
 public:
  Connection(int frames, std::string trouble, std::function<void()> wait = nullptr)
      : left_(frames), trouble_(std::move(trouble)), wait_(std::move(wait)) {
    info_.name = "camera";
    info_.live = true;
  }
  const SourceInfo& info() const override { return info_; }
  bool next(Frame& frame) override {
    if (wait_) std::exchange(wait_, nullptr)();
    if (left_-- == 0) return false;
    frame = {};
    frame.time = number_ * Time(40ms);
    frame.number = number_++;
    return true;
  }
  std::string trouble() const override { return trouble_; }

 private:
  SourceInfo info_;
  int left_;
  int number_ = 0;
  std::string trouble_;
  std::function<void()> wait_;
};

// The outcome of each attempt to connect: a number of frames, or a refusal.
struct Attempt {
  int frames;
  std::string text;  // the connection's error, or the refusal if there are no frames
  std::chrono::milliseconds lasts{0};
};

struct Watched {
  std::vector<Frame> frames;
  std::vector<std::string> messages;
  std::vector<std::chrono::milliseconds> waits;
  std::string trouble;
  SourceCounts counts;
  std::vector<SourceState> states;
};

LiveSource::WallTime at(std::chrono::milliseconds time) { return LiveSource::WallTime(time); }

Reading patient_for(std::optional<Time> patience) {
  Reading reading;
  reading.patience = patience;
  return reading;
}

struct Told {
  CameraState camera;
  LiveSource::WallTime since;
  std::string reason;
  bool operator==(const Told&) const = default;
};

std::vector<Told> told_by(const std::vector<SourceState>& states) {
  std::vector<Told> told;
  for (const SourceState& state : states) told.push_back({state.camera, state.since, state.reason});
  return told;
}

// Waiting takes no time and advances the clock unless that stands still. Each connection has a single frame,
// because frames may be dropped.
Watched watch(std::deque<Attempt> attempts, std::optional<Time> patience, bool clock_runs = true) {
  Watched watched;
  Deadline::Clock::time_point now{};
  LiveSource::Surroundings surroundings;
  surroundings.now = [&] { return now; };
  surroundings.wall = [&] {
    return LiveSource::WallTime(
        std::chrono::duration_cast<LiveSource::WallTime::duration>(now.time_since_epoch()));
  };
  surroundings.wait = [&](std::chrono::milliseconds time, std::stop_token) {
    watched.waits.push_back(time);
    if (clock_runs) now += time;
  };
  surroundings.chance = [] { return 1.0; };
  const auto connect = [&]() -> std::unique_ptr<Source> {
    const Attempt attempt = attempts.front();
    if (attempts.size() > 1) attempts.pop_front();
    if (attempt.frames == 0) throw Failure(kTrouble, "camera: " + attempt.text);
    return std::make_unique<Connection>(attempt.frames, attempt.text,
                                        [&now, attempt] { now += attempt.lasts; });
  };
  LiveSource source(connect(), connect, patient_for(patience), std::stop_source(), surroundings);
  source.set_state_listener([&](const SourceState& state) { watched.states.push_back(state); });
  source.set_listener([&](const std::string& text) { watched.messages.push_back(text); });
  for (Frame frame; source.next(frame);) watched.frames.push_back(frame);
  watched.trouble = source.trouble();
  watched.counts = source.counts();
  return watched;
}

// Waits of 0.5, 1, 2 and 4 s; 8 s more would exceed 10 s in all.
TEST(LiveSource, RetriesLessAndLessOftenUntilItsTimeLimit) {
  const Watched watched = watch({{1, "broken"}, {0, "refused"}}, 10s);
  EXPECT_EQ(watched.waits, (std::vector{500ms, 1000ms, 2000ms, 4000ms}));
  EXPECT_EQ(watched.frames.size(), 1U);
  EXPECT_EQ(watched.trouble, "connection lost, gave up: refused");
  EXPECT_EQ(watched.messages,
            (std::vector<std::string>{"connection lost: broken", "still disconnected: refused"}))
      << "the same refusal is told once";
}

// Connects after waits of 0.5, 1 and 2 s. One more wait would exceed 3.9 s in all.
TEST(LiveSource, RestartsTheBackOffAfterAConnectionOfHalfAMinute) {
  const auto waits_after = [](std::chrono::milliseconds connection) {
    return watch({{1, "a"}, {0, "b"}, {0, "b"}, {1, "c", connection}, {0, "d"}}, 3900ms).waits;
  };
  EXPECT_EQ(waits_after(30s), (std::vector{500ms, 1000ms, 2000ms, 500ms, 1000ms, 2000ms}));
  EXPECT_EQ(waits_after(30s - 1ms), (std::vector{500ms, 1000ms, 2000ms}));
}

TEST(LiveSource, NeverRetriesWithATimeLimitOfZero) {
  const Watched watched = watch({{1, ""}, {1, ""}}, 0s);
  EXPECT_TRUE(watched.waits.empty());
  EXPECT_EQ(watched.trouble, "connection lost, gave up: the stream ended");
}

TEST(LiveSource, StartsAnewAfterALossAndReportsIt) {
  const Watched watched = watch({{1, "broken"}, {0, "refused"}, {3, "again"}, {0, "refused"}}, 10s);
  EXPECT_EQ(watched.counts.reconnections, 1);
  EXPECT_EQ(watched.counts.away, 1500ms);  // waits of 0.5 and 1 s
  EXPECT_EQ(watched.counts.frames, 4);
  // Whichever frame is dropped, its note passes to the next.
  int anew = 0;
  for (const Frame& frame : watched.frames) {
    anew += frame.anew ? 1 : 0;
    EXPECT_EQ(frame.anew, frame.note == "reconnected after 1.500 s without pictures: broken") << frame.note;
  }
  EXPECT_EQ(anew, 1);
}

// Frame 0 at 0 s; 1.5 s later the second connection's frames 1, 2, 3, of which the last cannot be dropped.
TEST(LiveSource, CountsTimeAndFramesOverALoss) {
  const Watched watched = watch({{1, "broken"}, {0, "refused"}, {3, "again"}, {0, "refused"}}, 10s);
  ASSERT_FALSE(watched.frames.empty());
  EXPECT_EQ(watched.frames.back().number, 3);
  EXPECT_EQ(watched.frames.back().time, 1580ms);
}

// No time passes between the frames of the two connections. The second wait, 1 s, would exceed the limit.
TEST(LiveSource, IsAtLeastAMillisecondLaterAfterALoss) {
  const Watched watched = watch({{1, "broken"}, {1, "again"}}, 600ms, false);
  ASSERT_FALSE(watched.frames.empty());
  EXPECT_EQ(watched.counts.away, 0ms);
  EXPECT_EQ(watched.frames.back().number, 1);
  EXPECT_EQ(watched.frames.back().time, 1ms);
}

// A connection whose first frame is an hour into the stream.
class Buffered : public Connection {
 public:
  using Connection::Connection;
  bool next(Frame& frame) override {
    const bool any = Connection::next(frame);
    frame.time += 1h;
    return any;
  }
};

TEST(LiveSource, StartsWhenItIsOpenedOrBeforeItsBufferedFrames) {
  const auto never = []() -> std::unique_ptr<Source> { throw Failure(kTrouble, "refused"); };
  Frame frame;
  LiveSource direct(std::make_unique<Connection>(1, ""), never, patient_for(0s), std::stop_source());
  const auto opened = *direct.info().start;
  ASSERT_TRUE(direct.next(frame));
  EXPECT_NEAR(std::chrono::duration<double>(*direct.info().start - opened).count(), 0, 0.01)
      << "its frame at 0 s came later, but two clocks are read one after the other";
  LiveSource buffered(std::make_unique<Buffered>(1, ""), never, patient_for(0s), std::stop_source());
  const auto before = std::chrono::system_clock::now();
  ASSERT_TRUE(buffered.next(frame));
  EXPECT_GE(*buffered.info().start, before - 1h);
  EXPECT_LE(*buffered.info().start, std::chrono::system_clock::now() - 1h);
}

// The second connection is made after waits of 0.5 and 1 s and lasts 2 s until its only frame.
TEST(LiveSource, ReportsEveryStateWithItsBeginning) {
  const Watched watched = watch({{1, "broken"}, {0, "refused"}, {1, "again", 2000ms}, {0, "gone"}}, 2s);
  EXPECT_EQ(told_by(watched.states), (std::vector<Told>{{CameraState::kLost, at(0ms), "broken"},
                                                        {CameraState::kReconnecting, at(0ms), "broken"},
                                                        {CameraState::kReconnecting, at(0ms), "refused"},
                                                        {CameraState::kConnected, at(1500ms), ""},
                                                        {CameraState::kLost, at(3500ms), "again"},
                                                        {CameraState::kReconnecting, at(3500ms), "again"},
                                                        {CameraState::kReconnecting, at(3500ms), "gone"},
                                                        {CameraState::kLost, at(3500ms), "gave up: gone"}}));
}

TEST(LiveSource, IsOnlyLostIfItDoesNotRetry) {
  const Watched watched = watch({{1, "broken"}}, 0s);
  EXPECT_EQ(told_by(watched.states), (std::vector<Told>{{CameraState::kLost, at(0ms), "broken"}}));
}

TEST(LiveSource, CountsEveryFrameAsReturnedOrDropped) {
  const Watched watched = watch({{500, ""}, {0, "refused"}}, 0s);
  EXPECT_EQ(watched.counts.frames, 500);
  EXPECT_EQ(static_cast<std::int64_t>(watched.frames.size()) + watched.counts.dropped, 500);
  EXPECT_EQ(watched.frames.back().number, 499);
}

TEST(LiveSource, EndsAtOnceWhileDisconnected) {
  const auto connect = [] { return std::make_unique<Connection>(1, "broken"); };
  const std::stop_source stop;
  {
    LiveSource::Surroundings surroundings;  // the real ones: waits until stopped
    surroundings.chance = [] { return 1e9; };
    LiveSource source(connect(), connect, {}, stop, surroundings);
    Frame frame;
    ASSERT_TRUE(source.next(frame));
  }
  EXPECT_TRUE(stop.stop_requested());
}

}  // namespace
