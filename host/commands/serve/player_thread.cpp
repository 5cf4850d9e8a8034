// The playing thread.
#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/notice.h"
#include "host/commands/serve/player.h"
#include "host/source/timestamp.h"

namespace lm::host::commands::serve {
namespace {

using namespace std::chrono_literals;
using Clock = Pace::Clock;

// Video analysed before the position shown, so that the detector has learned the background.
constexpr Player::Time kLead = 2s;

// After this many frames without a failure, a restarted detector counts as recovered.
constexpr int kManyFrames = 25;

// The span over which frames per second are measured.
constexpr auto kRateSpan = 2s;

}  // namespace

void Player::work() {
  while (!stop_.stop_requested() && base::interrupted() == 0) {
    try {
      grant(next_wishes());
      step();
    } catch (const std::exception& error) {
      set_problem(away_, error.what());
      wait_a_while();
    }
  }
}

// A paused file waits for the next request. A camera keeps being read; only its picture is paused.
Player::Wishes Player::next_wishes() {
  std::unique_lock lock(mutex_);
  if (!state_.playing && !owing_ && !info_.live) {
    asked_.wait(lock, stop_.get_token(), [this] { return wishes_.any() || state_.playing; });
    pace_.reset();
  }
  return std::exchange(wishes_, {});
}

void Player::grant(Wishes wishes) {
  if (!wishes.any()) return;
  const Time here = owing_ ? show_from_ : state().time;
  const char* why = wishes.seek ? "The playback position was changed." : "The settings were changed.";
  if (wishes.detector) {
    detector_ = std::move(*wishes.detector);
    set_problem(detector_trouble_, "");
  }
  if (wishes.old) old_ = std::move(*wishes.old);
  start_at(wishes.seek ? before_the_end(*wishes.seek) : here, why);
}

// A video's length is not the time of its last frame, which comes an interval earlier.
Player::Time Player::before_the_end(Time time) const {
  const Time interval(std::llround(info_.rate > 0 ? 1e6 / info_.rate : 1e6));
  return info_.duration ? std::max(Time(0), std::min(time, *info_.duration - interval)) : time;
}

// Restarts from that position; the detectors start slightly earlier. A camera continues.
void Player::start_at(Time time, const std::string& why) {
  owing_ = true;
  if (!info_.live) {
    frame_.reset();
    pace_.reset();
    show_from_ = time;
    if (source_ && !source_->seek(std::max(Time(0), time - kLead))) source_.reset();
  }
  restart_detectors();
  begin_pass(why);
}

void Player::begin_pass(const std::string& why) {
  if (events_) events_->interrupt(why);
  events_.emplace(events::RunContext{event_options_, info_, detector_.document});
  events_->add(log_.begin_pass());
}

void Player::step() {
  if (!source_ && !open()) return wait_a_while();
  if (!detector_.process && !started(detector_)) return wait_a_while();
  if (!frame_) {
    source_->set_listener([this](const std::string& text) { set_problem(away_, text); });
    source::Frame frame;
    if (!source_->next(frame)) return source_ended();
    frame_ = std::move(frame);
    heard_ = true;
    set_problem(away_, "");
  }
  if (frame_->time < show_from_ - kLead) return frame_.reset();  // of a source that cannot seek
  if (frame_is_due()) one_frame();
}

// False if the source cannot be opened now.
bool Player::open() {
  std::stop_source stop;
  {
    const std::scoped_lock lock(mutex_);
    source_stop_ = stop;
  }
  if (stop_.stop_requested()) return false;
  try {
    source_ = source::open_source(plan_.source, plan_.reading.reading, stop);
  } catch (const base::Failure& failure) {
    set_problem(away_, failure.what());
    return false;
  }
  heard_ = false;
  const bool same = info_.size == source_->info().size;
  info_ = source_->info();
  {
    const std::scoped_lock lock(mutex_);
    state_.source = info_;
  }
  if (!same) detector_.process.reset();  // it was started for another size
  if (show_from_ > 0s) source_->seek(std::max(Time(0), show_from_ - kLead));
  return true;
}

void Player::source_ended() {
  if (stop_.stop_requested() || base::interrupted() != 0) return;
  const std::string trouble = source_->trouble();
  const bool wait = info_.live || !heard_;
  if (wait) {
    set_problem(away_, trouble.empty() ? "no picture from the source" : trouble);
  } else {
    set_problem(damage_, trouble);
    count_loop();
  }
  source_.reset();
  if (wait) wait_a_while();
  start_at(0us, "The video ended.");
}

void Player::count_loop() {
  {
    const std::scoped_lock lock(mutex_);
    ++state_.loop;
  }
  announce();
}

bool Player::frame_is_due() {
  if (info_.live || frame_->time < show_from_) return true;
  const std::optional<Clock::time_point> due = pace_.due(frame_->time, Clock::now());
  if (!due) {
    frame_.reset();
    return false;
  }
  std::unique_lock lock(mutex_);
  const auto other_plans = [this] { return wishes_.any() || (!state_.playing && !owing_); };
  return !asked_.wait_until(lock, stop_.get_token(), *due, other_plans) && !stop_.stop_requested();
}

void Player::one_frame() {
  const source::Frame frame = *std::exchange(frame_, std::nullopt);
  info_.start = source_->info().start;
  if (frame.anew && !restart_detectors()) return;
  Shot shot;
  shot.frame = frame.number;
  shot.time = frame.time;
  shot.image = frame.image;
  if (!ask(frame, shot) || frame.time < show_from_) return;
  shot.found.boxes = events_->frame(frame, frame.number, std::move(shot.found.boxes));
  show(std::move(shot));
}

bool Player::started(Detector& detector) {
  try {
    detector = start_detector(state().document);
    begin_pass("The detector was restarted.");
    return true;
  } catch (const base::Failure& failure) {
    detector_failed(failure.what());
    return false;
  }
}

bool Player::restart_detectors() {
  try {
    if (old_.process) old_.process->restart();
  } catch (const base::Failure& failure) {
    comparison_failed(failure.what());
  }
  try {
    if (detector_.process) detector_.process->restart();
    return true;
  } catch (const base::Failure& failure) {
    detector_failed(failure.what());
    return false;
  }
}

void Player::detector_failed(const std::string& cause) {
  if (stop_.stop_requested()) return;
  detector_.process.reset();
  set_problem(detector_trouble_, cause);
  wait_a_while();
}

void Player::comparison_failed(const std::string& cause) {
  if (stop_.stop_requested()) return;
  old_.process.reset();
  {
    const std::scoped_lock lock(mutex_);
    state_.comparing = false;
  }
  set_problem(detector_trouble_, "the comparison ended: " + cause);
}

// False if there is no answer.
bool Player::ask(const source::Frame& frame, Shot& shot) {
  const std::int64_t time = source::timestamp(info_, frame);
  const auto found = [&](Detector& detector) {
    DetectorProcess::Answer answer = detector.process->process(frame.image, time);
    return Found{std::move(answer.boxes), answer.cost};
  };
  try {
    shot.found = found(detector_);
  } catch (const base::Failure& failure) {
    detector_failed(failure.what());
    return false;
  }
  try {
    if (old_.process) shot.old = found(old_);
  } catch (const base::Failure& failure) {
    comparison_failed(failure.what());
  }
  if (++good_frames_ == kManyFrames) {
    back_off_.reset();
    set_problem(detector_trouble_, "");
  }
  return true;
}

void Player::show(Shot shot) {
  {
    const std::scoped_lock lock(mutex_);
    if (!state_.playing && !owing_) return;
    state_.time = shot.time;
    shot.state = state_.number;
  }
  owing_ = false;
  shot.rate = rate();
  shot.events = log_.events();
  showcase_.show(std::move(shot));
}

double Player::rate() {
  const auto now = Clock::now();
  analysed_.push_back(now);
  while (now - analysed_.front() > kRateSpan) analysed_.pop_front();
  if (analysed_.size() < 2) return 0;
  return double(analysed_.size() - 1) / std::chrono::duration<double>(now - analysed_.front()).count();
}

// With increasing pauses between attempts; a new request ends the wait.
void Player::wait_a_while() {
  good_frames_ = 0;
  std::unique_lock lock(mutex_);
  asked_.wait_for(lock, stop_.get_token(), back_off_.next(), [this] { return wishes_.any(); });
}

void Player::set_problem(std::string& problem, const std::string& text) {
  {
    const std::scoped_lock lock(mutex_);
    if (problem == text) return;
    problem = text;
  }
  if (!text.empty()) base::warn(text);
  announce();
}

}  // namespace lm::host::commands::serve
