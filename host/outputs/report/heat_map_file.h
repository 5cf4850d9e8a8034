// --heatmap: a heat map of motion over a frame of the video.
#pragma once

#include <string>

#include "host/base/pending_file.h"
#include "host/events/listener.h"
#include "host/outputs/report/heat_map.h"
#include "host/outputs/report/quiet_frame.h"

namespace lm::host::outputs::report {

class HeatMapFile : public events::EventListener {
 public:
  HeatMapFile(const std::string& file, cv::Size frame) : pending_(file), map_(frame), ground_(frame) {}

  void frame(const source::Frame& frame, const events::Observation& seen) override;
  void finish() override;
  void commit() override { pending_.commit(); }

 private:
  base::PendingFile pending_;
  HeatMap map_;
  QuietFrame ground_;
};

}  // namespace lm::host::outputs::report
