#include "host/outputs/report/heat_map_file.h"

#include "host/base/whole_file.h"
#include "host/outputs/report/image_bytes.h"

namespace lm::host::outputs::report {

void HeatMapFile::frame(const source::Frame& frame, const events::Observation& seen) {
  map_.add(events::boxes_of_kind(seen.boxes, events::EventKind::kMotion));
  ground_.offer(frame.image, seen.boxes.empty());
}

void HeatMapFile::finish() {
  base::write_bytes(pending_, png_bytes(with_legend(map_.over(ground_.image()), map_.highest())));
}

}  // namespace lm::host::outputs::report
