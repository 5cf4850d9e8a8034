#include "bench/requirements.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

// The plug-in's complete work against another candidate's.
double against(const Records& records, const char* scene, const char* candidate, const char* measure,
               cv::Size size = kFullHd) {
  const std::string at = text_of(size);
  return records.value("frames", scene, at, kPlugin, "whole_ms") /
         records.value("frames", scene, at, candidate, measure);
}

double against_cnt(const Records& records, const char* scene, cv::Size size = kFullHd) {
  return against(records, scene, kCnt, "whole_ms", size);
}

double saving(const Records& records, const char* candidate) {
  return records.value("savings", "quiet", text_of(kFullHd), candidate, "per_whole_frame");
}

double memory(const Records& records) {
  const auto in = [&](const char* scene) {
    return records.value("memory", scene, text_of(kFullHd), kPlugin, "bytes_per_pixel");
  };
  return std::max(in("busy"), in("storm"));
}

struct Requirement {
  const char* what;
  double must;
  double aim;
  double (*measured)(const Records&);
};

constexpr Requirement kRequirements[] = {
    {"quiet / CNT mask", 0.35, 0.25, [](const Records& r) { return against_cnt(r, "quiet"); }},
    {"quiet, sigma 2.5 / CNT mask", 0.9, 0.6, [](const Records& r) { return against_cnt(r, "noisy"); }},
    {"street / CNT mask", 0.95, 0.7, [](const Records& r) { return against_cnt(r, "street"); }},
    {"street 640x480 / CNT mask", 1.25, 0.9, [](const Records& r) { return against_cnt(r, "street", kVga); }},
    {"busy / CNT mask", 1.2, 0.8, [](const Records& r) { return against_cnt(r, "busy"); }},
    {"busy / MOG2", 0.25, 0.15, [](const Records& r) { return against(r, "busy", kMog2, "whole_ms"); }},
    {"storm / MOG2 mask", 0.33, 0.2, [](const Records& r) { return against(r, "storm", kMog2, "mask_ms"); }},
    {"lights / MOG2", 0.28, 0.15, [](const Records& r) { return against(r, "lights", kMog2, "whole_ms"); }},
    {"memory, bytes per pixel", 130, 100, memory},
    {"first frame, warm / MOG2", 3, 1.5,
     [](const Records& r) {
       return r.value("first_frame", "quiet", text_of(kFullHd), kPlugin, "warm_per_mog2");
     }},
    {"quiet: grey / 3 channels", 0.6, 0.4, [](const Records& r) { return saving(r, "grey frames"); }},
    {"quiet: region of a tenth / whole", 0.35, 0.2, [](const Records& r) { return saving(r, "region 10%"); }},
    {"street: SSE4.1 / AVX2, instructions", 2.2, 1.8,
     [](const Records& r) {
       return r.value("instructions", "street", text_of(kFullHd), "SSE4.1", "per_avx2");
     }},
};

struct Row {
  const Requirement* requirement;
  double measured;
  double of_must() const { return std::isnan(measured) ? 0 : measured / requirement->must; }
};

const char* verdict(const Row& row) {
  if (std::isnan(row.measured)) return "not measured";
  if (row.measured <= row.requirement->aim) return "ok, aim";
  return row.measured <= row.requirement->must ? "ok" : "MISSED";
}

}  // namespace

bool judge(Records& records) {
  std::vector<Row> rows;
  for (const Requirement& requirement : kRequirements) {
    const double measured = requirement.measured(records);
    rows.push_back({&requirement, measured});
    records.add({"required", "", "", requirement.what, "measured", measured});
    records.add({"required", "", "", requirement.what, "must", requirement.must});
    records.add({"required", "", "", requirement.what, "aim", requirement.aim});
  }
  std::ranges::stable_sort(rows, std::ranges::greater(), &Row::of_must);
  const Table table(
      "Limits, 1920x1080 unless said otherwise, worst first",
      {"what                                ", "must", "aim", "measured", "/must", "verdict     "}, 1);
  for (const Row& row : rows) {
    table.row({row.requirement->what, figure(row.requirement->must), figure(row.requirement->aim),
               figure(row.measured), figure(row.measured / row.requirement->must), verdict(row)});
  }
  return std::ranges::all_of(rows, [](const Row& row) { return row.measured <= row.requirement->must; });
}

}  // namespace lm::bench
