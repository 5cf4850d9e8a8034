#include "host/events/why.h"

#include <cmath>

#include "host/base/time_text.h"

namespace lm::host::events {

std::string tenths_text(double value) {
  const long long tenths = std::llround(std::abs(value) * 10);
  const std::string sign = value < 0 && tenths > 0 ? "-" : "";
  return sign + std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string percent_text(double share) { return tenths_text(share * 100) + " %"; }

std::string why_started(const Event& event, std::optional<std::chrono::microseconds> since, bool alone) {
  const std::string at = " at " + base::seconds_text(event.start) + " s: ";
  if (event.kind == EventKind::kLight && event.light) {
    const LightChange& light = *event.light;
    return std::string("The lighting became ") + (light.after >= light.before ? "brighter" : "darker") + at +
           "from " + tenths_text(light.before) + " to " + tenths_text(light.after) +
           " grey levels on average, changed over " + percent_text(light.share) +
           " of the watched picture, with boxes over " + percent_text(event.peak_share) + " of the frame.";
  }
  const std::string boxes =
      event.most_boxes == 1 ? "A box appeared" : std::to_string(event.most_boxes) + " boxes appeared";
  const std::string over = boxes + at + "over " + percent_text(event.peak_share) + " of the frame, ";
  if (!alone) return over + "apart from what was moving already.";
  return over + "where nothing had moved " +
         (since ? "for " + base::seconds_text(event.start - *since) + " s." : "before.");
}

std::string why_quiet(const Event& event, std::chrono::microseconds gap, std::chrono::microseconds hidden) {
  const char* what = event.kind == EventKind::kLight ? "No box of the lighting change" : "It was not seen";
  std::string text = std::string(what) + " for more than " + base::seconds_text(gap) + " s after " +
                     base::seconds_text(event.end) + " s";
  if (hidden.count() > 0) {
    text +=
        ", not counting " + base::seconds_text(hidden) + " s in which a lighting change covered the picture";
  }
  return text + ".";
}

}  // namespace lm::host::events
