// Interruptions of the source, and changes where nothing is watched.
#include <gtest/gtest.h>

#include "host/events/event_watch.h"
#include "host/events/hidden_change.h"

namespace {

using namespace lm::host::events;
using namespace lm::host::source;
using namespace std::chrono_literals;

// How many of two pictures' samples differ, by how much, and whether that counts.
bool counts(int samples, int step) {
  HiddenChange hidden(lm::host::detector::Regions(R"({"roi": [{"points": []}]})"));
  const cv::Mat before(180, 320, CV_8UC3, cv::Scalar(100, 100, 100));
  cv::Mat after = before.clone();
  for (int i = 0; i < samples; ++i) after.at<cv::Vec3b>(10 * i, 20 * i) += cv::Vec3b::all(uchar(step));
  hidden.look(before, true);
  hidden.look(after, true);
  return hidden.places().at(0).pictures == 1;
}

TEST(HiddenChange, CountsPicturesInWhichSixSamplesChangeByMoreThanNoise) {
  EXPECT_TRUE(counts(6, 21));
  EXPECT_FALSE(counts(5, 21));
  EXPECT_FALSE(counts(6, 20));
}

struct Ends : EventListener {
  explicit Ends(int& count) : count_(count) {}
  void ended(const Event&) override { ++count_; }
  void dropped(const Event&) override { ++count_; }

 private:
  int& count_;
};

// Whether a frame with a note this long after the one before ends the event. --gap is 2 s.
bool interrupts(std::chrono::microseconds pause) {
  const EventOptions options;
  const SourceInfo source;
  const std::string document = "{}";
  EventWatch watch({options, source, document});
  int ends = 0;
  watch.add(std::make_unique<Ends>(ends));
  Frame frame;
  frame.image = cv::Mat::zeros(18, 32, CV_8UC3);
  const Boxes boxes{{{0.25, 0.25, 0.5, 0.5}}};
  watch.frame(frame, 0, boxes);
  frame.time = pause;
  frame.note = "no frame for a while";
  watch.frame(frame, 1, boxes);
  return ends == 1;
}

struct Reasons : EventListener {
  explicit Reasons(std::vector<std::string>& all) : all_(all) {}
  void ended(const Event& event) override { all_.push_back(event.ended); }
  void dropped(const Event& event) override { all_.push_back(event.ended); }
  void source_changed(const SourceState& state) override {
    all_.push_back(state.camera == CameraState::kConnected ? "connected" : "no pictures");
  }

 private:
  std::vector<std::string>& all_;
};

TEST(EventWatch, EndsEventsWhenTheCameraIsLostOrFrozen) {
  const EventOptions options;
  const SourceInfo source;
  const std::string document = "{}";
  EventWatch watch({options, source, document});
  std::vector<std::string> told;
  watch.add(std::make_unique<Reasons>(told));
  Frame frame;
  frame.image = cv::Mat::zeros(18, 32, CV_8UC3);
  watch.frame(frame, 0, {{{0.25, 0.25, 0.5, 0.5}}});
  watch.source_changed({CameraState::kConnected, {}});
  EXPECT_EQ(told, (std::vector<std::string>{"connected"}));
  watch.source_changed({CameraState::kLost, {}, "no data"});
  frame.time = 40ms;
  watch.frame(frame, 1, {{{0.25, 0.25, 0.5, 0.5}}});
  watch.source_changed({CameraState::kFrozen, {}, "no change"});
  EXPECT_EQ(told, (std::vector<std::string>{"connected", "The connection to the camera was lost: no data.",
                                            "no pictures", "The picture froze: no change.", "no pictures"}));
}

TEST(EventWatch, TakesAPauseLongerThanTheGapForAnInterruption) {
  EXPECT_FALSE(interrupts(2s));
  EXPECT_TRUE(interrupts(2s + 1us));
}

}  // namespace
