#include "host/commands/archive/table.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "host/base/csv.h"
#include "host/base/failure.h"
#include "host/base/time_text.h"

namespace lm::host::commands::archive {
namespace {

const char* word(Outcome outcome) {
  switch (outcome) {
    case Outcome::kOk:
      return "ok";
    case Outcome::kIncomplete:
      return "incomplete";
    case Outcome::kFailed:
      break;
  }
  return "failed";
}

using Cells = std::array<std::string, 5>;  // status, frames, motion, events, length

std::string columns(const Cells& cells, const std::string& rest) {
  std::array<char, 100> text{};
  std::snprintf(text.data(), text.size(), "%-10s %9s %9s %9s %9s  ", cells[0].c_str(), cells[1].c_str(),
                cells[2].c_str(), cells[3].c_str(), cells[4].c_str());
  return text.data() + rest + "\n";
}

std::string line_of(const TableRow& row) {
  Cells cells{word(row.outcome), "-", "-", "-", "-"};
  if (const auto& figures = row.figures) {
    cells = {word(row.outcome), std::to_string(figures->frames), std::to_string(figures->frames_with_motion),
             std::to_string(figures->events), base::clock_text(figures->video)};
  }
  return columns(cells, base::one_line(row.path) + (row.why.empty() ? "" : ": " + base::one_line(row.why)));
}

std::string totals(const std::vector<TableRow>& rows) {
  run::Figures sum;
  for (const TableRow& row : rows) {
    if (!row.figures) continue;
    sum.frames += row.figures->frames;
    sum.frames_with_motion += row.figures->frames_with_motion;
    sum.events += row.figures->events;
    sum.video += row.figures->video;
  }
  const auto count = [&](Outcome outcome) {
    return std::to_string(std::ranges::count(rows, outcome, &TableRow::outcome));
  };
  return std::to_string(rows.size()) + (rows.size() == 1 ? " file: " : " files: ") + count(Outcome::kOk) +
         " ok, " + count(Outcome::kIncomplete) + " incomplete, " + count(Outcome::kFailed) + " failed; " +
         std::to_string(sum.frames) + " frames, " + std::to_string(sum.frames_with_motion) +
         " with motion, " + std::to_string(sum.events) + (sum.events == 1 ? " event, " : " events, ") +
         base::clock_text(sum.video) + " of video\n";
}

}  // namespace

std::string table_text(const std::vector<TableRow>& rows) {
  std::string text = columns({"status", "frames", "motion", "events", "length"}, "file");
  for (const TableRow& row : rows) text += line_of(row);
  return text + totals(rows);
}

std::string table_csv(const std::vector<TableRow>& rows) {
  std::string text = base::csv_row(
      {"source_name", "status", "frames", "frames_with_boxes", "event_count", "length", "results", "error"});
  for (const TableRow& row : rows) {
    std::vector<std::string> cells{row.path, word(row.outcome), "", "", "", "", row.results, row.why};
    if (const auto& figures = row.figures) {
      cells[2] = std::to_string(figures->frames);
      cells[3] = std::to_string(figures->frames_with_motion);
      cells[4] = std::to_string(figures->events);
      cells[5] = base::seconds_text(figures->video);
    }
    text += base::csv_row(cells);
  }
  return text;
}

}  // namespace lm::host::commands::archive
