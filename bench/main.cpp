// bench_frames: compares the plug-in with other detectors on whole frames.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <stdexcept>

#include "bench/header.h"
#include "bench/picture.h"
#include "bench/requirements.h"
#include "bench/scene.h"
#include "bench/sections/sections.h"
#include "host/detector/plugin.h"

namespace {

using namespace lm::bench;

struct Options {
  std::vector<std::string> scenes = scene_names();
  std::vector<std::string> sizes = {"640x480", "1280x720", "1920x1080", "3840x2160"};
  std::vector<std::string> sections = {"memory", "frames", "first_frame", "regions", "stages", "objects"};
  int frames = 0;
  Libraries libraries;
  std::string commit = "unknown";
  std::string yardstick_commit = "none";
  std::string csv;
  std::string picture;
};

void describe(CLI::App& app, Options& options) {
  app.add_option("--scenes", options.scenes, "quiet, street, busy, lights, storm (default: all)")
      ->delimiter(',')
      ->check(CLI::IsMember(scene_names()));
  app.add_option("--sizes", options.sizes, "such as 1920x1080")->delimiter(',');
  app.add_option("--sections", options.sections,
                 "memory, frames, first_frame, regions, stages, objects (default: all)")
      ->delimiter(',')
      ->check(CLI::IsMember(options.sections));
  app.add_option("--frames", options.frames, "timed frames per row (default: depends on the size)")
      ->check(CLI::PositiveNumber);
  app.add_option("--plugin", options.libraries.plugin, "the plug-in (default: beside this program)");
  app.add_option("--yardstick", options.libraries.yardstick,
                 "an earlier build of the plug-in to compare with");
  app.add_option("--commit", options.commit, "commit of the plug-in, for the header");
  app.add_option("--yardstick-commit", options.yardstick_commit, "commit of the yardstick");
  app.add_option("--csv", options.csv, "write every figure to this file");
  app.add_option("--picture", options.picture, "draw the table to this file (.png)");
}

Plan plan_of(const Options& options) {
  Plan plan{options.libraries, options.scenes, {}, options.frames};
  if (plan.libraries.plugin.empty()) {
    plan.libraries.plugin = lm::host::detector::find_plugin("", lm::host::detector::program_folder());
  }
  std::ranges::transform(options.sizes, std::back_inserter(plan.sizes), size_of);
  return plan;
}

int run(const Options& options) {
  const Plan plan = plan_of(options);
  const auto wanted = [&](const char* section) { return std::ranges::count(options.sections, section) > 0; };
  Records records;
  bool right = true;
  print_header(options.commit, options.yardstick_commit);
  // In child processes, before this one has grown.
  if (wanted("memory")) measure_memory(plan, records);
  if (wanted("frames")) right = measure_frames(plan, records);
  if (wanted("first_frame")) measure_first_frame(plan, records);
  if (wanted("regions")) measure_regions(plan, records);
  if (wanted("stages")) measure_stages(plan, records);
  if (wanted("objects")) measure_objects(records);
  judge(records);
  if (!options.csv.empty()) records.write_csv(options.csv);
  if (!options.picture.empty()) {
    const std::string size =
        text_of(std::ranges::count(plan.sizes, kFullHd) > 0 ? kFullHd : plan.sizes.back());
    draw_picture(records, size, processor() + "; commit " + options.commit, options.picture);
  }
  return right ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Options options;
    CLI::App app("Measures the time per frame of the plug-in and of other detectors, on generated input.");
    describe(app, options);
    CLI11_PARSE(app, argc, argv)
    cv::setNumThreads(1);
    return run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_frames: %s\n", error.what());
    return 2;
  }
}
