#include "host/base/keys.h"

#include <algorithm>
#include <unordered_map>

namespace lm::host::base {
namespace {

constexpr int kSeconds = 3;
constexpr int kFraction = 6;  // of the frame, 0 to 1
constexpr int kGrey = 3;      // grey levels, 0 to 255
constexpr int kPerSecond = 1;
constexpr int kMilliseconds = 3;
constexpr int kFrameRate = 3;

constexpr Key kKeys[] = {
    {"error"},
    {"format"},
    {"version"},
    {"program_version"},
    {"source"},
    {"name"},
    {"about"},
    {"live"},
    {"id"},
    {"others"},
    {"object"},
    {"kind"},
    {"sequence"},
    {"frame"},
    {"time", kSeconds},
    {"start", kSeconds},
    {"end", kSeconds},
    {"peak", kSeconds},
    {"from", kSeconds},
    {"to", kSeconds},
    {"first_frame"},
    {"last_frame"},
    {"peak_frame"},
    {"frame_size"},
    {"x", kFraction},
    {"y", kFraction},
    {"width", kFraction},
    {"height", kFraction},
    {"frame_rate", kFrameRate},
    {"size"},
    {"modified"},
    {"options"},
    {"settings_digest"},
    {"exit_status"},
    {"status"},
    {"files"},
    {"files_done"},
    {"files_with_problems"},
    {"frames"},
    {"frames_with_boxes"},
    {"length", kSeconds},
    {"last_time", kSeconds},
    {"duration", kSeconds},
    {"eta", kSeconds},
    {"fps", kPerSecond},
    {"plugin_ms", kMilliseconds},
    {"event_count"},
    {"most_boxes"},
    {"peak_share", kFraction},
    {"envelope"},
    {"largest"},
    {"objects"},
    {"path"},
    {"dwell", kSeconds},
    {"visits"},
    {"crossings"},
    {"direction"},
    {"boxes"},
    {"baseline"},
    {"regions"},
    {"light"},
    {"before", kGrey},
    {"after", kGrey},
    {"share", kFraction},
    {"wall_start"},
    {"wall_end"},
    {"timestamp"},
    {"note"},
    {"camera"},
    {"since"},
    {"started"},
    {"ended"},
    {"results"},
    {"rules"},
    {"min_event", kSeconds},
    {"gap", kSeconds},
    {"pre", kSeconds},
    {"post", kSeconds},
    {"done"},
    {"findings"},
    {"severity"},
    {"key"},
    {"line"},
    {"column"},
    {"text"},
    {"hint"},
    {"effective"},
    {"match_threshold"},
    {"change_threshold"},
    {"lighting_threshold"},
    {"auto_sensitivity"},
    {"static_lifetime", kSeconds},
    {"static_lifetime_frames"},
    {"extent"},
    {"peel"},
    {"adapts"},
    {"min_box"},
    {"min_box_pixels"},
    {"watched_share", kFraction},
    {"memory"},
    {"quiet"},
    {"motion"},
    {"assumed"},
    {"spans"},
    {"spans_found"},
    {"kept", kFraction},
    {"trials"},
    {"chosen"},
    {"reason"},
    {"settings", kVerbatim},
    {"configuration", kVerbatim},
    {"playing"},
    {"loop"},
    {"saved"},
    {"file"},
    {"backup"},
    {"problem"},
    {"comparing"},
    {"viewers"},
    {"presets"},
    {"state"},
    {"events"},
    {"activity", kFraction},
};

}  // namespace

std::span<const Key> keys() { return kKeys; }

std::size_t place_of(std::string_view name) {
  static const auto places = [] {
    std::unordered_map<std::string_view, std::size_t> all;
    for (const Key& key : kKeys) all.emplace(key.name, all.size());
    return all;
  }();
  const auto found = places.find(name);
  return found == places.end() ? std::size(kKeys) : found->second;
}

}  // namespace lm::host::base
