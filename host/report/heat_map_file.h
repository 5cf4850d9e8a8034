// --heatmap: where things moved, laid over a frame of the video.
#pragma once

#include <string>

#include "host/events/listener.h"
#include "host/pending_file.h"
#include "host/report/heat_map.h"
#include "host/report/quiet_frame.h"

namespace lm::host {

class HeatMapFile : public EventListener {
 public:
  HeatMapFile(const std::string& file, cv::Size frame) : pending_(file), map_(frame), ground_(frame) {}

  void frame(const Frame& frame, const Observation& seen) override;
  void finish() override;
  void commit() override { pending_.commit(); }

 private:
  PendingFile pending_;
  HeatMap map_;
  QuietFrame ground_;
};

}  // namespace lm::host
