#include "host/report/report_options.h"

#include <CLI/CLI.hpp>

namespace lm::host {
namespace {

// Refuses names with another ending.
auto ending(const std::string& wanted) {
  return [wanted](const std::string& file) {
    return file.ends_with(wanted) ? "" : "must end in " + wanted + ", not " + file;
  };
}

}  // namespace

void add_report_options(CLI::App& run, ReportOptions& options) {
  const auto add = [&run](const char* name, std::string& value, const char* kind, const char* help) {
    return run.add_option(name, value, help)->type_name(kind)->group("For people");
  };
  add("--report", options.page, "FILE", "One page with timeline, pictures and heat map (.html)")
      ->check(ending(".html"));
  add("--heatmap", options.heatmap, "FILE", "Where things moved, over a frame (.png)")->check(ending(".png"));
  add("--snapshots", options.snapshots, "DIR", "The best frame of each event, boxes drawn");
  add("--clips", options.clips, "DIR", "Each event as a video, copied where that can be");
}

}  // namespace lm::host
