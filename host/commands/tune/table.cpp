#include "host/commands/tune/table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include "host/base/json_text.h"
#include "host/base/time_text.h"

namespace lm::host::commands::tune {
namespace {

using std::chrono::microseconds;
using Cells = std::vector<std::string>;

// "2", "5.5": seconds without trailing zeros.
std::string short_seconds(microseconds time) {
  std::string text = base::seconds_text(time);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text;
}

std::string in_two(std::size_t part, std::size_t whole) {
  return std::to_string(part) + " of " + std::to_string(whole);
}

// Of the boxes around what moves.
double kept_share(const Figures& figures, const Outcome& outcome) {
  return static_cast<double>(figures.kept) / static_cast<double>(outcome.moving.size());
}

std::string kept_text(const Figures& figures, const Outcome& outcome) {
  if (outcome.moving.empty()) return "-";
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%.1f %%", 100 * kept_share(figures, outcome));
  return text.data();
}

Cells row_of(const Trial& trial, const Outcome& outcome) {
  const auto [sensitivity, adaptation, width, height] = texts_of(trial.setting, outcome.own);
  const Figures& figures = trial.figures;
  return {sensitivity,
          adaptation,
          width,
          height,
          std::to_string(figures.quiet_frames),
          std::to_string(figures.quiet_events),
          std::to_string(figures.motion_frames),
          std::to_string(figures.motion_events),
          in_two(figures.found, outcome.marks.motion.size()),
          kept_text(figures, outcome),
          std::to_string(figures.frames),
          std::to_string(figures.events),
          trial.setting == Setting{} ? "start" : ""};
}

// Right-aligned columns. `mark`: the row marked in front.
std::string aligned(const std::vector<Cells>& rows, std::size_t mark) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const Cells& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (std::size_t line = 0; line < rows.size(); ++line) {
    text += line == mark ? ">" : " ";
    for (std::size_t i = 0; i < widths.size(); ++i) {
      text.append(2 + widths[i] - rows[line][i].size(), ' ').append(rows[line][i]);
    }
    text.erase(text.find_last_not_of(' ') + 1).append("\n");
  }
  return text;
}

Json::Value figures_json(std::int64_t frames_with_boxes, std::size_t events) {
  Json::Value value;
  value["frames_with_boxes"] = Json::Int64(frames_with_boxes);
  value["event_count"] = Json::UInt64(events);
  return value;
}

Json::Value spans_json(const Spans& spans, bool assumed, std::int64_t frames) {
  Json::Value value;
  value["frames"] = Json::Int64(frames);
  value["assumed"] = assumed;
  value["spans"] = Json::arrayValue;
  for (const events::TimeSpan& span : spans) {
    Json::Value ends;
    ends["from"] = base::seconds_number(span.from);
    ends["to"] = base::seconds_number(span.to);
    value["spans"].append(ends);
  }
  return value;
}

Json::Value trial_json(const Trial& trial, const Outcome& outcome) {
  Json::Value value = figures_json(trial.figures.frames, trial.figures.events);
  value["settings"] = Json::objectValue;
  for (const auto& [key, text] : members_of(trial.setting)) value["settings"][key] = text;
  value["quiet"] = figures_json(trial.figures.quiet_frames, trial.figures.quiet_events);
  value["motion"] = figures_json(trial.figures.motion_frames, trial.figures.motion_events);
  value["motion"]["spans_found"] = Json::UInt64(trial.figures.found);
  if (!outcome.moving.empty()) value["motion"]["kept"] = kept_share(trial.figures, outcome);
  return value;
}

}  // namespace

std::string text_of(const Spans& spans, bool assumed) {
  if (spans.empty()) return assumed ? "none found" : "none";
  std::string text;
  for (const events::TimeSpan& span : spans) {
    text.append(text.empty() ? "" : ", ").append(short_seconds(span.from));
    text.append("-").append(short_seconds(span.to));
  }
  return text.append(assumed ? " (assumed)" : "");
}

std::string table_text(const Outcome& outcome) {
  const Marks& marks = outcome.marks;
  std::string text = outcome.source + ": " + std::to_string(outcome.frames) + " frames, " +
                     short_seconds(outcome.length) + " s, " + std::to_string(outcome.trials.size()) +
                     " settings tried\nquiet, in seconds: " + text_of(marks.quiet, marks.quiet_assumed) +
                     "; " + std::to_string(outcome.quiet_frames) +
                     " frames\nmotion, in seconds: " + text_of(marks.motion, marks.motion_assumed) + "; " +
                     std::to_string(outcome.motion_frames) + " frames\n\n";
  std::vector<Cells> rows{{"", "", "min.", "box", "quiet", "", "motion", "", "", "", "total", "", ""},
                          {"sensitivity", "lcAdap", "width", "height", "frames", "events", "frames", "events",
                           "found", "kept", "frames", "events", ""}};
  const std::size_t heads = rows.size();
  for (const Trial& trial : outcome.trials) rows.push_back(row_of(trial, outcome));
  text += aligned(rows, heads + outcome.chosen);
  if (outcome.chosen == 0) return text + '\n' + outcome.why + '\n';
  std::string changes;
  for (const auto& [key, value] : members_of(outcome.trials[outcome.chosen].setting)) {
    changes.append(changes.empty() ? "" : ", ").append(key).append(" ").append(value);
  }
  return text + "\nProposed: " + changes + ". " + outcome.why + '\n';
}

std::string to_json(const Outcome& outcome) {
  Json::Value root;
  root["source"]["name"] = outcome.source;
  root["frames"] = Json::Int64(outcome.frames);
  root["length"] = base::seconds_number(outcome.length);
  root["quiet"] = spans_json(outcome.marks.quiet, outcome.marks.quiet_assumed, outcome.quiet_frames);
  root["motion"] = spans_json(outcome.marks.motion, outcome.marks.motion_assumed, outcome.motion_frames);
  for (const Trial& trial : outcome.trials) root["trials"].append(trial_json(trial, outcome));
  root["chosen"] = Json::UInt64(outcome.chosen);
  root["reason"] = outcome.why;
  std::istringstream(outcome.document) >> root["configuration"];
  return base::json_text(root) + "\n";
}

}  // namespace lm::host::commands::tune
