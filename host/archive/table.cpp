#include "host/archive/table.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "host/failure.h"
#include "host/time_text.h"

namespace lm::host {
namespace {

const char* word(Outcome outcome) {
  switch (outcome) {
    case Outcome::kFine:
      return "fine";
    case Outcome::kTrouble:
      return "trouble";
    case Outcome::kFailed:
      break;
  }
  return "failed";
}

std::string columns(const std::string& status, const std::string& frames, const std::string& motion,
                    const std::string& length, const std::string& rest) {
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%-7s %9s %9s %9s  ", status.c_str(), frames.c_str(),
                motion.c_str(), length.c_str());
  return text.data() + rest + "\n";
}

std::string line_of(const TableRow& row) {
  const std::string rest = one_line(row.path) + (row.why.empty() ? "" : ": " + one_line(row.why));
  if (!row.figures) return columns(word(row.outcome), "-", "-", "-", rest);
  return columns(word(row.outcome), std::to_string(row.figures->frames),
                 std::to_string(row.figures->frames_with_motion), clock_text(row.figures->video), rest);
}

std::string totals(const std::vector<TableRow>& rows) {
  Figures sum;
  for (const TableRow& row : rows) {
    if (!row.figures) continue;
    sum.frames += row.figures->frames;
    sum.frames_with_motion += row.figures->frames_with_motion;
    sum.video += row.figures->video;
  }
  const auto count = [&](Outcome outcome) {
    return std::to_string(std::ranges::count(rows, outcome, &TableRow::outcome));
  };
  return std::to_string(rows.size()) + (rows.size() == 1 ? " file: " : " files: ") + count(Outcome::kFine) +
         " fine, " + count(Outcome::kTrouble) + " with trouble, " + count(Outcome::kFailed) + " failed; " +
         std::to_string(sum.frames) + " frames, " + std::to_string(sum.frames_with_motion) +
         " with motion, " + clock_text(sum.video) + " of video\n";
}

std::string quoted(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string result = "\"";
  for (const char c : text) result.append(c == '"' ? 2 : 1, c);
  return result + "\"";
}

}  // namespace

std::string table_text(const std::vector<TableRow>& rows) {
  std::string text = columns("status", "frames", "motion", "length", "file");
  for (const TableRow& row : rows) text += line_of(row);
  return text + totals(rows);
}

std::vector<std::string> table_csv(const std::vector<TableRow>& rows) {
  std::vector<std::string> lines{"file,status,frames,frames_with_motion,seconds,results,why"};
  for (const TableRow& row : rows) {
    const std::string figures = row.figures ? std::to_string(row.figures->frames) + "," +
                                                  std::to_string(row.figures->frames_with_motion) + "," +
                                                  seconds_text(row.figures->video)
                                            : ",,";
    lines.push_back(quoted(row.path) + "," + word(row.outcome) + "," + figures + "," + row.results + "," +
                    quoted(row.why));
  }
  return lines;
}

}  // namespace lm::host
