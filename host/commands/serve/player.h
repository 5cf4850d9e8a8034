// Plays a source in a loop through one detector, or two for comparison.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "host/base/back_off.h"
#include "host/commands/serve/detector_process.h"
#include "host/commands/serve/event_log.h"
#include "host/commands/serve/pace.h"
#include "host/commands/serve/showcase.h"
#include "host/events/event_options.h"
#include "host/events/event_watch.h"
#include "host/source/live/live_options.h"
#include "host/source/source.h"

namespace lm::host::commands::serve {

struct PlayerPlan {
  std::string source;  // as for open_source
  source::live::LiveOptions reading;
  DetectorKind detector;
};

struct PlayerState {
  source::SourceInfo source;
  std::chrono::microseconds time{0};  // of the picture shown
  bool playing = true;
  std::int64_t loop = 1;
  std::string document;  // the user's text in effect
  bool comparing = false;
  std::string problem;       // of the source or the detector; empty if none
  std::uint64_t number = 1;  // changes when any other member except the time may have changed
};

class Player {
 public:
  using Time = std::chrono::microseconds;

  // Opens the source and starts the detector; throws Failure.
  Player(PlayerPlan plan, const std::string& document);
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  // All of these may be called from any thread and do not wait for frames.
  PlayerState state() const;
  void play(bool playing);
  void seek(Time time);  // not for live sources

  // Restarts the detector with this configuration; nothing changes if it is refused. Throws Failure.
  void apply(const std::string& document);
  // Runs a second detector with this configuration on the same frames; empty: none. Throws Failure.
  void compare(const std::string& document);

  Showcase& showcase() { return showcase_; }
  const EventLog& log() const { return log_; }

  // Makes every viewer request the state again.
  void announce();

  // Ends everything at once, including waits for a picture.
  void stop();

 private:
  struct Detector {
    std::string document;
    std::unique_ptr<DetectorProcess> process;
  };
  // Requests to the playing thread since its last check.
  struct Wishes {
    std::optional<Time> seek{};
    std::optional<Detector> detector{};
    std::optional<Detector> old{};  // without a process: no comparison
    bool any() const { return seek || detector || old; }
  };
  Detector start_detector(const std::string& document) const;

  // The playing thread.
  void work();
  Wishes next_wishes();
  void grant(Wishes wishes);
  void step();
  Time before_the_end(Time time) const;
  void start_at(Time time, const std::string& why);
  void begin_pass(const std::string& why);
  bool open();
  void source_ended();
  void count_loop();
  bool frame_is_due();
  void one_frame();
  bool started(Detector& detector);
  bool restart_detectors();
  bool ask(const source::Frame& frame, Shot& shot);
  void detector_failed(const std::string& cause);
  void comparison_failed(const std::string& cause);
  void show(Shot shot);
  double rate();
  void wait_a_while();
  void set_problem(std::string& problem, const std::string& text);

  const PlayerPlan plan_;
  const events::EventOptions event_options_;  // the default rules
  std::stop_source stop_;

  mutable std::mutex mutex_;
  std::condition_variable_any asked_;
  // Under the mutex:
  PlayerState state_;
  std::string away_, damage_, detector_trouble_;  // combined into the state's problem
  Wishes wishes_;
  std::stop_source source_stop_;

  // Used by the playing thread only:
  source::SourceInfo info_;
  std::unique_ptr<source::Source> source_;
  Detector detector_, old_;
  std::optional<events::EventWatch> events_;
  std::optional<source::Frame> frame_;  // read, but not shown yet
  Pace pace_;
  base::BackOff back_off_;
  Time show_from_{0};                             // earlier frames are only learned by the detector
  bool owing_ = true;                             // a picture must be shown, even when paused
  bool heard_ = false;                            // a frame was analysed since the source was opened
  int good_frames_ = 0;                           // since the detector failed
  std::deque<Pace::Clock::time_point> analysed_;  // recent times

  EventLog log_;
  Showcase showcase_;
  std::jthread thread_;
};

}  // namespace lm::host::commands::serve
