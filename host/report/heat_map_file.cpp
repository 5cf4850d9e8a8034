#include "host/report/heat_map_file.h"

#include "host/report/boxes_of_kind.h"
#include "host/report/image_bytes.h"
#include "host/whole_file.h"

namespace lm::host {

void HeatMapFile::frame(const Frame& frame, const Observation& seen) {
  map_.add(boxes_of_kind(seen, EventKind::kMotion));
  ground_.offer(frame.image, seen.boxes.empty());
}

void HeatMapFile::finish() {
  write_bytes(pending_, png_bytes(with_legend(map_.over(ground_.image()), map_.highest())));
}

}  // namespace lm::host
