#include "host/source/live/live_source.h"

#include <algorithm>
#include <condition_variable>
#include <utility>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/time_text.h"

namespace lm::host::source::live {
namespace {

using namespace std::chrono_literals;

// A connection that lasted this long is good: after its loss, the back-off starts over.
constexpr auto kGoodConnection = base::BackOff::kLongest;

// Signals do not end a wait, so they are polled at this interval.
constexpr auto kGlance = 100ms;

void wait_or_stop(std::chrono::milliseconds time, std::stop_token stop) {
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any().wait_for(lock, std::move(stop), time, [] { return false; });
}

}  // namespace

LiveSource::Surroundings::Surroundings() : wait(wait_or_stop) {}

LiveSource::LiveSource(std::unique_ptr<Source> first, Connect connect, const Reading& reading,
                       std::stop_source stop, Surroundings surroundings)
    : info_(first->info()),
      connection_(std::move(first)),
      connect_(std::move(connect)),
      patience_(reading.patience),
      freeze_(reading.frozen),
      stop_(std::move(stop)),
      surroundings_(std::move(surroundings)),
      back_off_(surroundings_.chance),
      last_frame_(surroundings_.now()) {
  info_.start = wall_clock_.start(Time{0}, true, WallClock::now());  // its first picture has been read
}

LiveSource::~LiveSource() {
  stop_.request_stop();
  if (reader_.joinable()) reader_.join();
}

bool LiveSource::next(Frame& frame) {
  if (!reader_.joinable()) reader_ = std::thread([this] { read(); });
  while (base::interrupted() == 0 && !stop_.stop_requested()) {
    NewestFrame::Taken taken = newest_.take(kGlance);
    for (const NewestFrame::News& news : taken.news) {
      if (!news.message.empty()) report(news.message);
      if (news.state) report(*news.state);
    }
    if (taken.frame) {
      frame = std::move(*taken.frame);
      info_.start = wall_clock_.start(frame.time, frame.anew, WallClock::now());
      if (const Time step = wall_clock_.step(); step != Time{0}) {
        report("the computer's clock was set " + std::string(step > Time{0} ? "forward" : "back") + " by " +
               base::seconds_text(std::chrono::abs(step)) + " s");
      }
      return true;
    }
    if (!taken.ended) continue;
    if (error_) std::rethrow_exception(error_);
    return false;
  }
  return false;
}

std::string LiveSource::trouble() const {
  const std::scoped_lock lock(mutex_);
  return base::interrupted() != 0 ? "" : trouble_;
}

SourceCounts LiveSource::counts() const {
  const std::scoped_lock lock(mutex_);
  return counts_;
}

LiveSource::Time LiveSource::since(base::Deadline::Clock::time_point begin) const {
  return std::chrono::duration_cast<Time>(surroundings_.now() - begin);
}

void LiveSource::read() {
  try {
    do {
      forward_frames();
    } while (!stop_.stop_requested() && base::interrupted() == 0 && connect_again());
  } catch (...) {
    error_ = std::current_exception();
  }
  newest_.end();
}

void LiveSource::forward_frames() {
  const auto begin = surroundings_.now();
  Shedding shedding(begin);
  frozen_ = false;
  last_change_ = begin;
  for (Frame frame; connection_->next(frame);) {
    last_frame_ = surroundings_.now();
    frame.time = last_time_ = first_time_ + frame.time;
    frame.number = last_number_ = first_number_ + frame.number;
    if (!is_frozen(frame)) forward(std::move(frame), shedding);
  }
  if (surroundings_.now() - begin >= kGoodConnection) back_off_.reset();
}

void LiveSource::forward(Frame frame, Shedding& shedding) {
  if (!news_.empty()) {
    frame.note = std::exchange(news_, "");
    frame.anew = true;
  }
  const bool dropped = !newest_.put(std::move(frame));
  if (std::string text = shedding.count(dropped, last_frame_); !text.empty())
    newest_.put_news({std::move(text)});
  const std::scoped_lock lock(mutex_);
  ++counts_.frames;
  counts_.dropped += dropped ? 1 : 0;
}

// A frozen picture is not forwarded: it shows nothing of what happens, and when it changes the scene is
// another.
bool LiveSource::is_frozen(const Frame& frame) {
  const Time still = since(last_change_);
  if (!frame.repeated) last_change_ = last_frame_;
  if (frozen_ && !frame.repeated) {
    frozen_ = false;
    newest_.put_news({"", SourceState{CameraState::kConnected, surroundings_.wall()}});
    news_ = "the picture was frozen for " + base::seconds_text(still) + " s";
  } else if (!frozen_ && frame.repeated && freeze_ > 0us && still >= freeze_) {
    frozen_ = true;
    const std::string reason = "no change for " + base::seconds_text(still) + " s";
    put_state(CameraState::kFrozen, wall_at(last_change_), reason, "the picture is frozen: " + reason);
  }
  return frozen_;
}

// Retries until connected; false if the time limit is reached or the program is stopping.
bool LiveSource::connect_again() {
  std::string cause = connection_->trouble();
  if (cause.empty()) cause = "the stream ended";
  connection_.reset();
  lost_since_ = wall_at(last_frame_);
  put_state(CameraState::kLost, lost_since_, cause, "connection lost: " + cause);
  const std::string lost_by = cause;
  bool idle = true;
  for (;;) {
    const auto delay = back_off_.next();
    const Time away = since(last_frame_);
    if (patience_ && away + delay > *patience_) break;
    if (std::exchange(idle, false)) put_state(CameraState::kReconnecting, lost_since_, cause);
    surroundings_.wait(delay, stop_.get_token());
    if (stop_.stop_requested() || base::interrupted() != 0) return false;
    const std::string refusal = attempt();
    if (refusal.empty()) {
      connected(since(last_frame_), lost_by);
      return true;
    }
    if (refusal != cause)
      put_state(CameraState::kReconnecting, lost_since_, refusal, "still disconnected: " + refusal);
    cause = refusal;
  }
  if (!idle) put_state(CameraState::kLost, lost_since_, "gave up: " + cause);
  const std::scoped_lock lock(mutex_);
  trouble_ = "connection lost, gave up: " + cause;
  return false;
}

// Returns why connecting failed; empty on success.
std::string LiveSource::attempt() {
  try {
    connection_ = connect_();
    return "";
  } catch (const base::Failure& failure) {
    const std::string text = failure.what();
    const std::string prefix = info_.name + ": ";
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
  }
}

void LiveSource::put_state(CameraState camera, WallTime since, const std::string& reason,
                           std::string message) {
  newest_.put_news({std::move(message), SourceState{camera, since, reason}});
}

LiveSource::WallTime LiveSource::wall_at(base::Deadline::Clock::time_point past) const {
  return surroundings_.wall() - std::chrono::duration_cast<WallTime::duration>(since(past));
}

void LiveSource::connected(Time away, const std::string& cause) {
  first_time_ = last_time_ + std::max<Time>(away, 1ms);
  first_number_ = last_number_ + 1;
  newest_.put_news({"", SourceState{CameraState::kConnected, surroundings_.wall()}});
  news_ = "reconnected after " + base::seconds_text(away) + " s without pictures: " + cause;
  const std::scoped_lock lock(mutex_);
  ++counts_.reconnections;
  counts_.away += away;
}

}  // namespace lm::host::source::live
