#include "host/outputs/report/report_options.h"

#include <CLI/CLI.hpp>

namespace lm::host::outputs::report {
namespace {

// Rejects names with another extension.
auto ending(const std::string& wanted) {
  return [wanted](const std::string& file) {
    return file.ends_with(wanted) ? "" : "must end in " + wanted + ", not " + file;
  };
}

}  // namespace

void add_report_options(CLI::App& run, ReportOptions& options) {
  const auto add = [&run](const char* name, std::string& value, const char* kind, const char* help) {
    return run.add_option(name, value, help)->type_name(kind)->group("Report");
  };
  add("--report", options.page, "FILE", "Write a page with timeline, pictures and heat map (.html)")
      ->check(ending(".html"));
  add("--heatmap", options.heatmap, "FILE", "Write a picture of where motion was (.png)")
      ->check(ending(".png"));
  add("--snapshots", options.snapshots, "DIR",
      "Write the best frame of each event, boxes drawn, to this folder");
  add("--clips", options.clips, "DIR",
      "Write each event as a video to this folder, copied without re-encoding where possible");
}

}  // namespace lm::host::outputs::report
