#include "host/outputs/report/clips.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "host/base/failure.h"
#include "host/base/whole_file.h"
#include "host/outputs/report/clip_copier.h"
#include "host/outputs/report/lookback.h"
#include "host/outputs/report/output_names.h"

namespace lm::host::outputs::report {
namespace {

using std::chrono::microseconds;
using namespace std::chrono_literals;

}  // namespace

Clips::Clips(const std::string& folder, const std::string& file, const source::SourceInfo& source,
             const events::EventRules& rules)
    : folder_(folder),
      file_(file),
      container_(container_for_copy(file)),
      copied_to_(microseconds::max()),
      copying_(container_ != nullptr),
      recorder_(folder, source, lookback(rules) + microseconds(std::llround(rules.pre * 1e6))) {
  base::make_folder(folder);
}

void Clips::frame(const source::Frame& frame, const events::Observation& seen) {
  if (copying_) follow_file_time(frame);
  if (!copying_) recorder_.frame(frame.image, seen.time);
}

// If the file's timestamps jump, as in joined recordings, positions cannot be found by time.
void Clips::follow_file_time(const source::Frame& frame) {
  if (!frame.stated) return;
  const microseconds offset = *frame.stated - frame.time;
  if (!offset_) offset_ = offset;
  if (offset - *offset_ < 500ms && *offset_ - offset < 500ms) return;
  copying_ = false;
  copied_to_ = frame.time - 1us;
}

// A clip analysed again may have an event with the same start.
void Clips::spare_source(const events::Event& event) const {
  for (const char* ending : {".mp4", ".mkv"}) {
    const std::string name = folder_ + "/" + event_stem(event) + ending;
    std::error_code ignored;
    if (std::filesystem::equivalent(name, file_, ignored)) {
      throw base::Failure(base::kTrouble,
                          name + " would overwrite the source; choose another folder for --clips");
    }
  }
}

void Clips::begun(const events::Event& event) {
  spare_source(event);
  if (!copying_) recorder_.begin(event);
}

void Clips::changed(const events::Event& event) {
  if (recorder_.records(event)) recorder_.extend(event);
}

void Clips::ended(const events::Event& event) {
  if (recorder_.records(event)) {
    recorder_.end(event);
  } else if (container_ != nullptr) {
    copy(event);
  }
}

void Clips::copy(const events::Event& event) const {
  const char* ending = std::string(container_) == "mp4" ? ".mp4" : ".mkv";
  base::PendingFile clip(folder_ + "/" + event_stem(event) + ending);
  const microseconds offset = offset_.value_or(0us);
  copy_clip(file_, container_, event.from + offset, std::min(event.to, copied_to_) + offset, clip);
  clip.commit();
}

}  // namespace lm::host::outputs::report
