// A live source: read by its own thread, and reconnected when the connection is lost.
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "host/base/back_off.h"
#include "host/base/deadline.h"
#include "host/source/live/newest_frame.h"
#include "host/source/live/shedding.h"
#include "host/source/live/wall_clock.h"
#include "host/source/source.h"

namespace lm::host::source::live {

// Returns the newest frame and drops older ones not yet taken. Times continue after a loss, which they
// include.
class LiveSource : public Source {
 public:
  using WallTime = std::chrono::system_clock::time_point;

  // Throws Failure if connecting fails. A connection has ended when its next returns false.
  using Connect = std::function<std::unique_ptr<Source>()>;

  // Clocks, waiting and random numbers; replaced in tests.
  struct Surroundings {
    base::Deadline::Now now = base::Deadline::Clock::now;
    std::function<WallTime()> wall = std::chrono::system_clock::now;
    std::function<void(std::chrono::milliseconds, std::stop_token)> wait;
    base::BackOff::Chance chance = base::real_chance();
    Surroundings();
  };

  // `stop`: makes a connection's next return early, for shutdown.
  LiveSource(std::unique_ptr<Source> first, Connect connect, const Reading& reading, std::stop_source stop,
             Surroundings surroundings = {});
  ~LiveSource() override;
  LiveSource(const LiveSource&) = delete;
  LiveSource& operator=(const LiveSource&) = delete;

  const SourceInfo& info() const override { return info_; }
  bool next(Frame& frame) override;
  std::string trouble() const override;
  SourceCounts counts() const override;

 private:
  using Time = std::chrono::microseconds;

  void read();  // the thread
  void forward_frames();
  void forward(Frame frame, Shedding& shedding);
  bool is_frozen(const Frame& frame);
  bool connect_again();
  std::string attempt();
  void connected(Time away, const std::string& cause);
  void put_state(CameraState camera, WallTime since, const std::string& reason, std::string message = "");
  WallTime wall_at(base::Deadline::Clock::time_point past) const;
  Time since(base::Deadline::Clock::time_point begin) const;

  SourceInfo info_;
  std::unique_ptr<Source> connection_;
  Connect connect_;
  std::optional<Time> patience_;
  Time freeze_;
  std::stop_source stop_;
  Surroundings surroundings_;
  base::BackOff back_off_;

  // Time and frame number at which this connection starts, and the note for its first frame.
  Time first_time_{0};
  std::int64_t first_number_ = 0;
  std::string news_;
  Time last_time_{0};
  std::int64_t last_number_ = 0;
  base::Deadline::Clock::time_point last_frame_;
  base::Deadline::Clock::time_point last_change_;  // arrival of the last frame unlike the one before it
  bool frozen_ = false;
  WallTime lost_since_;

  WallClock wall_clock_;
  NewestFrame newest_;
  mutable std::mutex mutex_;  // for members shared by both threads
  SourceCounts counts_;
  std::string trouble_;
  std::exception_ptr error_;
  std::thread reader_;
};

}  // namespace lm::host::source::live
