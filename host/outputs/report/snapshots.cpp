#include "host/outputs/report/snapshots.h"

#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/outputs/overlay.h"
#include "host/outputs/report/image_bytes.h"
#include "host/outputs/report/lookback.h"
#include "host/outputs/report/output_names.h"
#include "host/outputs/report/shown_size.h"

namespace lm::host::outputs::report {
namespace {

constexpr int kSnapshotCoarseness = 3;
constexpr int kLongestSide = 65'500;  // JPEG's limit

}  // namespace

Snapshots::Snapshots(const std::string& folder, const source::SourceInfo& source,
                     const events::EventRules& rules)
    : folder_(folder),
      live_(source.live),
      outage_("snapshots in " + folder),
      best_(lookback(rules), shown_size(source.size, source.pixel_aspect, kLongestSide)) {
  base::make_folder(folder);
}

void Snapshots::ended(const events::Event& event) {
  Still still = best_.take(event);
  if (still.image.empty()) return;
  draw_paths(still.image, event);
  draw_overlay(still.image, still.boxes, base::seconds_text(still.time) + " s");
  const auto write = [&] {
    base::write_file(folder_ + "/" + event_stem(event) + ".jpg",
                     jpeg_bytes(still.image, kSnapshotCoarseness));
    outage_.worked();
  };
  if (live_) {
    outage_.attempt(write);
  } else {
    write();
  }
}

}  // namespace lm::host::outputs::report
