#include "host/commands/run/summary.h"

#include <array>
#include <cstdio>

#include "host/base/time_text.h"

namespace lm::host::commands::run {
namespace {

double seconds(std::chrono::microseconds time) { return static_cast<double>(time.count()) / 1e6; }

// Drops and reconnections of a live source, if any.
std::string account(const source::SourceCounts& counts) {
  std::string text;
  if (counts.dropped > 0) {
    text += std::to_string(counts.dropped) + " of " + std::to_string(counts.frames) +
            " frames dropped because analysis was slower than the source\n";
  }
  if (counts.reconnections > 0) {
    text += "reconnected " + std::to_string(counts.reconnections) +
            (counts.reconnections == 1 ? " time, " : " times, ") + base::seconds_text(counts.away) +
            " s without pictures\n";
  }
  return text;
}

std::string output_names(const RunOptions& options) {
  const outputs::report::ReportOptions& report = options.report;
  std::string text;
  for (const auto& [what, name] : {std::pair{"annotated video", &options.annotate},
                                   {"events", &options.events.file},
                                   {"report", &report.page},
                                   {"heat map", &report.heatmap},
                                   {"snapshots", &report.snapshots},
                                   {"clips", &report.clips}}) {
    if (!name->empty()) text.append(what).append(": ").append(*name).append("\n");
  }
  return text;
}

}  // namespace

std::string summary(const std::string& source, const Figures& figures, const RunOptions& options) {
  const double ratio = figures.work.count() > 0 ? seconds(figures.video) / seconds(figures.work) : 0;
  std::array<char, 160> line{};
  std::snprintf(line.data(), line.size(),
                ": %lld frames, %.1f s of video in %.1f s: %.0f fps, %.1f x real time\n",
                static_cast<long long>(figures.frames), seconds(figures.video), seconds(figures.work),
                speed(figures), ratio);
  std::string text = source + line.data();
  text += account(figures.source);
  text += "motion in " + std::to_string(figures.frames_with_motion) + " frames, " +
          std::to_string(figures.events) + (figures.events == 1 ? " event" : " events");
  if (!options.results.empty() && options.results != "-") text += ", listed in " + options.results;
  text += "\n";
  if (figures.clutter > 0)
    text += std::to_string(figures.clutter) + " boxes left out as clutter, such as rain or leaves\n";
  return text + output_names(options);
}

}  // namespace lm::host::commands::run
