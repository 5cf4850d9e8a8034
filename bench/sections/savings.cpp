// What grey frames and smaller regions of interest save.
#include "bench/sections/sections.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

Candidate whole_frame(const std::string& library, int channels) {
  return {.name = channels == 1 ? "grey frames" : "whole frame",
          .grey = channels == 1,
          .make = [=](cv::Size frame) { return make_plugin(library, document_for(frame, 1, channels)); }};
}

Candidate region(const std::string& library, int percent) {
  return {.name = "region " + std::to_string(percent) + "%",
          .make = [=](cv::Size frame) { return make_plugin(library, document_for(frame, percent / 100.0)); }};
}

}  // namespace

void measure_savings(const Plan& plan, Records& records) {
  const std::string& library = plan.libraries.plugin;
  std::vector<Candidate> candidates = {whole_frame(library, 3), whole_frame(library, 1), region(library, 10)};
  std::vector<const char*> scenes = {"quiet"};
  if (!plan.brief) {
    for (const int percent : {50, 25, 5}) candidates.push_back(region(library, percent));
    scenes.push_back("street");
  }
  const Table table(
      "Grey frames, and regions that cover a share of the frame, 1920x1080: milliseconds, and against the "
      "whole "
      "frame with 3 channels",
      {"scene", "what", "ms", "/whole"}, 2);
  for (const char* const name : scenes) {
    Scene scene = make_scene(name, kFullHd);
    const int timed = timed_frames(plan, scene);
    const std::vector<Lap> laps = race(candidates, std::move(scene), {.timed = timed});
    for (const Lap& lap : laps) {
      const double ratio = lap.whole / laps.front().whole;
      records.add({"savings", name, text_of(kFullHd), lap.name, "whole_ms", lap.whole});
      records.add({"savings", name, text_of(kFullHd), lap.name, "per_whole_frame", ratio});
      table.row({name, lap.name, figure(lap.whole), figure(ratio)});
    }
  }
}

}  // namespace lm::bench
