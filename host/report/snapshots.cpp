#include "host/report/snapshots.h"

#include "host/overlay.h"
#include "host/report/image_bytes.h"
#include "host/report/lookback.h"
#include "host/report/output_names.h"
#include "host/report/shown_size.h"
#include "host/time_text.h"
#include "host/whole_file.h"

namespace lm::host {
namespace {

constexpr int kCoarseness = 3;
constexpr int kLongest = 65'500;  // what JPEG can hold

}  // namespace

Snapshots::Snapshots(const std::string& folder, const SourceInfo& source, const EventRules& rules)
    : folder_(folder), best_(lookback(rules), shown_size(source.size, source.pixel_aspect, kLongest)) {
  make_folder(folder);
}

void Snapshots::ended(const Event& event) {
  Still still = best_.take(event);
  if (still.image.empty()) return;
  draw_overlay(still.image, still.boxes, seconds_text(still.time) + " s");
  write_file(folder_ + "/" + event_stem(event) + ".jpg", jpeg_bytes(still.image, kCoarseness));
}

}  // namespace lm::host
