// Where frames come from: a file, a stream, a camera or the built-in scene.
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
  std::optional<std::chrono::microseconds> stated{};  // as the file itself has it; none where it has none
  std::int64_t number = 0;  // among all frames of the source; those that were left out count
  bool anew = false;        // nothing before it may be compared with it: the source was away
  std::string note;         // what happened to the source before it, in one line; mostly empty
};

struct SourceInfo {
  std::string name;                                   // for messages
  cv::Size size;                                      // of every frame
  cv::Size pixel_aspect{1, 1};                        // width : height of one pixel when shown
  double rate = 0;                                    // nominal frames per second; 0 when unknown
  std::optional<std::chrono::microseconds> duration;  // when known beforehand
  bool live = false;                                  // happens now: the wall clock is its clock
  // Of a live source: the wall clock at time 0, as well as it is known so far.
  std::optional<std::chrono::system_clock::time_point> start;
};

// How a source is to be read.
struct Reading {
  double fps = 0;                                       // hand out at most so many frames a second; 0: all
  std::chrono::microseconds max_gap{10'000'000};        // report times that lie further apart
  std::chrono::microseconds timeout{10'000'000};        // of networks and cameras: how long to wait for data
  std::optional<std::chrono::microseconds> patience{};  // ... to try to get a lost one back; else for ever
};

// What a live source went through.
struct SourceCounts {
  std::int64_t frames = 0;   // that came, without those that --fps leaves out
  std::int64_t dropped = 0;  // of these, because a newer one came before they could be handed out
  int reconnections = 0;
  std::chrono::microseconds away{0};  // without a connection, in all
};

class Source {
 public:
  virtual ~Source() = default;

  virtual const SourceInfo& info() const = 0;

  // Moves the next frame into `frame`; false when there is none, or when the program was interrupted.
  virtual bool next(Frame& frame) = 0;

  // The next frame will be the first one that is not earlier than `time`. False when the source cannot do
  // that: what is live has no other moment than now.
  virtual bool seek(std::chrono::microseconds) { return false; }

  // After the last frame: what was wrong with the source, in one line; empty when nothing was.
  virtual std::string trouble() const { return ""; }

  virtual SourceCounts counts() const { return {}; }

  // Who hears of what happens to the source while there is no frame to tell it with, in one line each. Called
  // from within next.
  using Listener = std::function<void(const std::string&)>;
  void tell(Listener listener) { listener_ = std::move(listener); }

 protected:
  void say(const std::string& text) const {
    if (listener_) listener_(text);
  }

 private:
  Listener listener_;
};

// `name`: a path, an address with "://" or a camera "/dev/video..."; empty for the built-in scene.
// Throws Failure when no frame can be had from it. `stop` ends all waiting, and with it the frames; the
// source may ask for it itself at its end.
std::unique_ptr<Source> open_source(const std::string& name, const Reading& reading = {},
                                    const std::stop_source& stop = std::stop_source());

// Cameras and network addresses are live; files are not. An address may still turn out to be a recording.
bool is_live(const std::string& name);

}  // namespace lm::host::source
