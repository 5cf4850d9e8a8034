// Sources of frames: a file, a stream, a camera or the built-in scene.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

namespace lm::host::source {

struct Frame {
  cv::Mat image;                      // 8-bit blue, green, red; rows without padding
  std::chrono::microseconds time{0};  // since the first frame; each frame is later than the one before
  std::optional<std::chrono::microseconds> stated{};  // timestamp in the file; none if it has none
  std::int64_t number = 0;  // among all frames of the source, including frames not returned
  bool repeated = false;    // of a live source: has exactly the pixels of the frame before it
  bool anew = false;        // must not be compared with earlier frames: the connection was lost in between
  std::string note;         // what happened to the source before it, in one line; usually empty
};

struct SourceInfo {
  std::string name;                                   // for messages
  cv::Size size;                                      // of every frame
  cv::Size pixel_aspect{1, 1};                        // width : height of one pixel when shown
  double rate = 0;                                    // nominal frames per second; 0 when unknown
  std::optional<std::chrono::microseconds> duration;  // if known in advance
  bool live = false;                                  // uses the wall clock
  // Of a live source: the wall clock at time 0, as far as known at the latest frame.
  std::optional<std::chrono::system_clock::time_point> start;
};

// How to read a source.
struct Reading {
  double fps = 0;                                       // return at most this many frames per second; 0: all
  std::chrono::microseconds max_gap{10'000'000};        // report gaps longer than this
  std::chrono::microseconds timeout{10'000'000};        // of networks and cameras: time to wait for data
  std::optional<std::chrono::microseconds> patience{};  // ... time to reconnect; without it, no limit
  std::chrono::microseconds frozen{60'000'000};  // ... a picture that stays the same is frozen; 0: never
};

// Whether a camera or stream delivers pictures.
enum class CameraState {
  kConnected,
  kLost,          // not yet reconnecting, or no longer
  kReconnecting,  // trying to
  kFrozen,        // it delivers the same picture over and over
};

struct SourceState {
  CameraState camera = CameraState::kConnected;
  std::chrono::system_clock::time_point since;  // when pictures began to arrive, or the last new one arrived
  std::string reason{};                         // why there are none, in one line; empty if connected
};

// Statistics of a live source.
struct SourceCounts {
  std::int64_t frames = 0;   // received, without those skipped by --fps
  std::int64_t dropped = 0;  // of these, replaced by newer ones before they were taken
  int reconnections = 0;
  std::chrono::microseconds away{0};  // total time without a connection
};

class Source {
 public:
  virtual ~Source() = default;

  virtual const SourceInfo& info() const = 0;

  // Moves the next frame into `frame`; false at the end, or if the program was interrupted.
  virtual bool next(Frame& frame) = 0;

  // The next frame will be the first one not earlier than `time`. False if the source cannot seek, as live
  // sources cannot.
  virtual bool seek(std::chrono::microseconds) { return false; }

  // After the last frame: the source's error in one line; empty if there was none.
  virtual std::string trouble() const { return ""; }

  virtual SourceCounts counts() const { return {}; }

  // Receives messages about the source while there is no frame to attach them to, one line each. Called from
  // within next.
  using Listener = std::function<void(const std::string&)>;
  void set_listener(Listener listener) { listener_ = std::move(listener); }

  // Called from within next when the state of a live source changes; at the start it is connected. Changes
  // and frames are in the order in which they happened.
  using StateListener = std::function<void(const SourceState&)>;
  void set_state_listener(StateListener listener) { state_listener_ = std::move(listener); }

 protected:
  void report(const std::string& text) const {
    if (listener_) listener_(text);
  }
  void report(const SourceState& state) const {
    if (state_listener_) state_listener_(state);
  }

 private:
  Listener listener_;
  StateListener state_listener_;
};

// `name`: a path, an address with "://" or a camera "/dev/video..."; empty for the built-in scene. Throws
// Failure if no frame can be read. `stop` ends all waiting and the frames; the source may request it itself
// at its end.
std::unique_ptr<Source> open_source(const std::string& name, const Reading& reading = {},
                                    const std::stop_source& stop = std::stop_source());

// Cameras and network addresses are live, files are not. An address may still turn out to be a recording.
bool is_live(const std::string& name);

}  // namespace lm::host::source
