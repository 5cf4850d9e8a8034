// bench_frames: compares the plug-in with other detectors on whole frames.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "bench/beside_program.h"
#include "bench/header.h"
#include "bench/picture.h"
#include "bench/requirements.h"
#include "bench/scene.h"
#include "bench/sections/sections.h"

namespace {

using namespace lm::bench;

const std::vector<std::string> kSections = {"memory", "first_frame", "frames", "savings", "instructions"};

struct Options {
  std::vector<std::string> scenes = scene_names();
  std::vector<std::string> sizes = {"640x480", "1280x720", "1920x1080", "3840x2160"};
  std::vector<std::string> sections = kSections;
  bool requirements = false;
  int frames = 0;
  Libraries libraries;
  std::string commit = "unknown";
  std::string yardstick_commit = "none";
  std::string csv;
  std::string picture;
};

void describe(CLI::App& app, Options& options) {
  app.add_option("--scenes", options.scenes, "quiet, noisy, street, busy, lights, storm (default: all)")
      ->delimiter(',')
      ->check(CLI::IsMember(scene_names()));
  app.add_option("--sizes", options.sizes, "such as 1920x1080")->delimiter(',');
  app.add_option("--sections", options.sections,
                 "memory, first_frame, frames, savings, instructions (default: all)")
      ->delimiter(',')
      ->check(CLI::IsMember(kSections));
  app.add_flag("--requirements", options.requirements,
               "only what the requirements need; exit status 1 if one is not met");
  app.add_option("--frames", options.frames, "timed frames per row (default: depends on scene and size)")
      ->check(CLI::PositiveNumber);
  app.add_option("--plugin", options.libraries.plugin, "the plug-in (default: beside this program)");
  app.add_option("--yardstick", options.libraries.yardstick,
                 "an earlier build of the plug-in to compare with");
  app.add_option("--commit", options.commit, "commit of the plug-in, for the header");
  app.add_option("--yardstick-commit", options.yardstick_commit, "commit of the yardstick");
  app.add_option("--csv", options.csv, "write every figure to this file");
  app.add_option("--picture", options.picture, "draw the figures for 1920x1080 to this file (.png)");
}

Plan plan_of(const Options& options) {
  Plan plan{options.libraries, {}, options.frames, options.requirements};
  if (plan.libraries.plugin.empty()) plan.libraries.plugin = lm::bench::beside_program("liblightmotion.so.1");
  if (plan.brief) {
    for (const std::string& scene : scene_names()) plan.rows.emplace_back(scene, kFullHd);
    plan.rows.emplace_back("street", kVga);
    return plan;
  }
  for (const std::string& scene : options.scenes) {
    for (const std::string& size : options.sizes) plan.rows.emplace_back(scene, size_of(size));
  }
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
  if (wanted("first_frame")) measure_first_frame(plan, records);
  if (wanted("frames")) right = measure_frames(plan, records);
  if (wanted("savings")) measure_savings(plan, records);
  if (wanted("instructions")) measure_instructions(plan, records);
  const bool met = judge(records);
  if (!options.csv.empty()) records.write_csv(options.csv);
  if (!options.picture.empty()) {
    draw_picture(records, text_of(kFullHd), processor() + "; commit " + options.commit, options.picture);
  }
  return right && (met || !options.requirements) ? 0 : 1;
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
