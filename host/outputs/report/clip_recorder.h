// Clips from the frames themselves, where there is no file to copy from.
#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <string>

#include "host/base/pending_file.h"
#include "host/events/event.h"
#include "host/outputs/video_writer.h"
#include "host/source/source.h"

namespace lm::host::outputs::report {

// The latest frames are kept, because an event is known some time after it began: no larger than 960 pixels a
// side, no longer than `window`, and never more than 256 MiB of them, the oldest of which go first.
class ClipRecorder {
 public:
  ClipRecorder(const std::string& folder, const source::SourceInfo& source, std::chrono::microseconds window);

  void frame(const cv::Mat& image, std::chrono::microseconds time);

  void begin(const events::Event& event);
  bool records(const events::Event& event) const { return clips_.contains(event.id); }
  void go_on(const events::Event& event);
  void end(const events::Event& event);  // its clip is complete when its last frame has come

  void finish();
  void commit();

 private:
  struct Kept {
    cv::Mat image;
    std::chrono::microseconds time;
  };
  struct Clip {
    Clip(const std::string& name, const VideoWriter::Shape& shape, const events::Event& event);
    base::PendingFile file;
    VideoWriter video;
    std::chrono::microseconds next;   // from here on nothing is written
    std::chrono::microseconds to;     // to here everything belongs to it
    std::chrono::microseconds first;  // time of its first frame
    bool empty = true;
    bool ended = false;
  };
  void write_to(Clip& clip) const;

  std::string folder_;
  VideoWriter::Shape shape_;
  std::chrono::microseconds window_;
  std::deque<Kept> kept_;
  std::map<std::string, std::unique_ptr<Clip>> clips_;  // by the event's id
};

}  // namespace lm::host::outputs::report
