// Command-line options of outputs for people.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace lm::host::outputs::report {

// An empty text: not given.
struct ReportOptions {
  std::string heatmap;    // PNG file
  std::string snapshots;  // folder
  std::string clips;      // folder
  std::string page;       // HTML file
};

void add_report_options(CLI::App& run, ReportOptions& options);

}  // namespace lm::host::outputs::report
