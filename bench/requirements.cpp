#include "bench/requirements.h"

#include <cmath>

#include "bench/peers/peer.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

double frames(const Records& records, const char* scene, const char* candidate, const char* measure) {
  return records.value("frames", scene, text_of(kFullHd), candidate, measure);
}

// The plug-in's total time compared with another candidate's.
template <typename... Of>
double against(const Records& records, const char* scene, Of... other) {
  return frames(records, scene, kPlugin, "whole_ms") / frames(records, scene, other...);
}

double growth_with_size(const Records& records) {
  const auto per_pixel = [&](cv::Size size) {
    return records.value("frames", "quiet", text_of(size), kPlugin, "whole_ms") / size.area();
  };
  return per_pixel({3840, 2160}) / per_pixel({640, 480});
}

double tenth_of_the_frame(const Records& records, const char* scene) {
  return records.value("regions", scene, text_of(kFullHd), "10%", "per_whole_frame");
}

struct Requirement {
  const char* what;
  double must;
  double aim;
  double (*measured)(const Records&);
};

constexpr Requirement kRequirements[] = {
    {"quiet / one copy of the frame", 12, 9,
     [](const Records& r) { return against(r, "quiet", kCopy, "whole_ms"); }},
    {"quiet / mask of CNT", 0.7, 0.5, [](const Records& r) { return against(r, "quiet", "CNT", "mask_ms"); }},
    {"street / mask of CNT", 1.0, 0.6,
     [](const Records& r) { return against(r, "street", "CNT", "mask_ms"); }},
    {"quiet / MOG2", 0.12, 0.08, [](const Records& r) { return against(r, "quiet", "MOG2", "whole_ms"); }},
    {"street / MOG2", 0.2, 0.1, [](const Records& r) { return against(r, "street", "MOG2", "whole_ms"); }},
    {"busy / MOG2", 0.5, 0.25, [](const Records& r) { return against(r, "busy", "MOG2", "whole_ms"); }},
    {"lights / MOG2", 0.5, 0.25, [](const Records& r) { return against(r, "lights", "MOG2", "whole_ms"); }},
    {"storm / mask of MOG2", 1.0, 0.6,
     [](const Records& r) { return against(r, "storm", "MOG2", "mask_ms"); }},
    {"first frame / a later one of MOG2", 10, 5,
     [](const Records& r) { return r.value("first_frame", "quiet", text_of(kFullHd), kPlugin, "per_mog2"); }},
    {"peak memory, bytes per pixel", 310, 290,
     [](const Records& r) {
       return r.value("memory", "busy", text_of(kFullHd), kPlugin, "bytes_per_pixel");
     }},
    {"time per pixel, 3840x2160 / 640x480", 2, 1.5, growth_with_size},
    {"1000 objects, ms more than none", 4, 1,
     [](const Records& r) { return r.value("objects", "", text_of(kFullHd), "1000", "beyond_none_ms"); }},
    {"street: region of a tenth / whole", 0.6, 0.4,
     [](const Records& r) { return tenth_of_the_frame(r, "street"); }},
    {"quiet: region of a tenth / whole", 0.6, 0.4,
     [](const Records& r) { return tenth_of_the_frame(r, "quiet"); }},
};

const char* verdict(const Requirement& requirement, double measured) {
  if (std::isnan(measured)) return "not measured";
  if (measured <= requirement.aim) return "aim";
  return measured <= requirement.must ? "pass" : "FAIL";
}

}  // namespace

void judge(Records& records) {
  const Table table("Limits at 1920x1080, complete work",
                    {"what                                ", "must", "aim", "measured", "verdict     "}, 1);
  for (const Requirement& requirement : kRequirements) {
    const double measured = requirement.measured(records);
    records.add({"required", "", "", requirement.what, "measured", measured});
    records.add({"required", "", "", requirement.what, "must", requirement.must});
    records.add({"required", "", "", requirement.what, "aim", requirement.aim});
    table.row({requirement.what, figure(requirement.must), figure(requirement.aim), figure(measured),
               verdict(requirement, measured)});
  }
}

}  // namespace lm::bench
