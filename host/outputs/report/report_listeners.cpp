#include "host/outputs/report/report_listeners.h"

#include "host/outputs/report/clips.h"
#include "host/outputs/report/heat_map_file.h"
#include "host/outputs/report/report_page.h"
#include "host/outputs/report/snapshots.h"

namespace lm::host::outputs::report {

void add_report_listeners(const ReportOptions& options, const std::string& source,
                          const events::RunContext& context,
                          std::vector<std::unique_ptr<events::EventListener>>& listeners) {
  const events::EventRules& rules = context.options.rules;
  if (!options.heatmap.empty()) {
    listeners.push_back(std::make_unique<HeatMapFile>(options.heatmap, context.source.size));
  }
  if (!options.snapshots.empty()) {
    listeners.push_back(std::make_unique<Snapshots>(options.snapshots, context.source, rules));
  }
  if (!options.clips.empty()) {
    listeners.push_back(std::make_unique<Clips>(options.clips, source, context.source, rules));
  }
  if (!options.page.empty()) {
    listeners.push_back(std::make_unique<ReportPage>(options.page, context.source, context.document, rules));
  }
}

}  // namespace lm::host::outputs::report
