// Records clips from frames, for sources that are not files.
#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <string>

#include "host/base/outage.h"
#include "host/base/pending_file.h"
#include "host/events/event.h"
#include "host/outputs/video_writer.h"
#include "host/source/source.h"

namespace lm::host::outputs::report {

// Keeps the latest frames, because events are announced some time after they begin: scaled to at most 960
// pixels per side, for at most `window`, and at most 256 MiB; the oldest frames are dropped first. For live
// sources a clip that cannot be written is skipped.
class ClipRecorder {
 public:
  ClipRecorder(const std::string& folder, const source::SourceInfo& source, std::chrono::microseconds window);

  void frame(const cv::Mat& image, std::chrono::microseconds time);

  void begin(const events::Event& event);
  bool records(const events::Event& event) const { return clips_.contains(event.id); }
  void extend(const events::Event& event);
  void end(const events::Event& event);  // the clip is complete after its post-roll

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
    std::chrono::microseconds next;   // frames before this are already written
    std::chrono::microseconds to;     // end of the post-roll
    std::chrono::microseconds first;  // time of its first frame
    bool empty = true;
    bool ended = false;
  };
  using Clips = std::map<std::string, std::unique_ptr<Clip>>;  // by event id
  void write_to(Clip& clip) const;
  void complete(Clip& clip);
  template <typename Write>
  bool attempt(const Write& write);
  template <typename Write>
  void change(Clips::iterator clip, const Write& write);

  std::string folder_;
  bool live_;
  base::Outage outage_;
  VideoWriter::Shape shape_;
  std::chrono::microseconds window_;
  std::deque<Kept> kept_;
  Clips clips_;
};

}  // namespace lm::host::outputs::report
