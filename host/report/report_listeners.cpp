#include "host/report/report_listeners.h"

#include "host/report/clips.h"
#include "host/report/heat_map_file.h"
#include "host/report/report_page.h"
#include "host/report/snapshots.h"

namespace lm::host {

void add_report_listeners(const ReportOptions& options, const RunContext& context,
                          std::vector<std::unique_ptr<EventListener>>& listeners) {
  const EventRules& rules = context.options.events.rules;
  if (!options.heatmap.empty()) {
    listeners.push_back(std::make_unique<HeatMapFile>(options.heatmap, context.source.size));
  }
  if (!options.snapshots.empty()) {
    listeners.push_back(std::make_unique<Snapshots>(options.snapshots, context.source, rules));
  }
  if (!options.clips.empty()) {
    listeners.push_back(
        std::make_unique<Clips>(options.clips, context.options.source, context.source, rules));
  }
  if (!options.page.empty()) {
    listeners.push_back(std::make_unique<ReportPage>(options.page, context.source, context.document, rules));
  }
}

}  // namespace lm::host
