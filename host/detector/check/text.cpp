#include "host/detector/check/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "host/base/failure.h"
#include "host/detector/check/effect.h"

namespace lm::host::detector::check {
namespace {

constexpr int kUsuallyPeeled = 3;
constexpr std::array kWorstFirst = {Severity::error, Severity::warning, Severity::note};

std::string place(const std::string& name, const Finding& finding) {
  if (finding.line == 0) return name + ": ";
  return name + ':' + std::to_string(finding.line) + ':' + std::to_string(finding.column) + ": ";
}

// Everything after the position.
std::string sentence_of(const Finding& finding) { return base::one_line(lm::check::message(finding)); }

std::string percent(double fraction) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3g %%", 100 * fraction);
  return text.data();
}

std::string in_both(const std::string& width, const std::string& height) {
  return width == height ? width + " each way" : width + " across, " + height + " down";
}

std::string min_box(const Effective& effective) {
  std::string text = in_both(percent(effective.min_box_width), percent(effective.min_box_height));
  if (effective.frame.empty()) return text;
  return text + ": " + std::to_string(effective.min_box_pixels.width) + " x " +
         std::to_string(effective.min_box_pixels.height) + " pixels";
}

std::string life(const Effective& effective) {
  if (std::isinf(effective.life_static_seconds)) return "ever";
  std::array<char, 32> seconds{};
  std::snprintf(seconds.data(), seconds.size(), "%g", effective.life_static_seconds);
  return std::string(seconds.data()) + " seconds, " + std::to_string(effective.life_static) +
         " frames at 30 per second";
}

// "sensitivity, peel".
std::string list(const std::vector<std::string>& keys) {
  std::string text;
  for (const std::string& key : keys) text.append(text.empty() ? "" : ", ").append(key);
  return text;
}

using Row = std::pair<const char*, std::string>;

std::vector<Row> rows(const Effective& effective) {
  const auto levels = [](std::int32_t number) { return std::to_string(number) + " grey levels"; };
  std::vector<Row> table = {
      {"matches the background", "up to " + levels(effective.thr_match) + " (thrMatch)"},
      {"counts as unchanged", "up to " + levels(effective.thr_heuris) + " (thrHeuris)"},
      {"lighting change followed", "above " + levels(effective.thr_illum) + " (thrIllum)"},
      {"minimum box size", min_box(effective)},
      {"still objects kept for", life(effective)},
  };
  if (effective.extent == "full") table.emplace_back("boxes", "around whole pieces (extent)");
  if (effective.extent == "object") table.emplace_back("boxes", "around whole objects (extent)");
  if (effective.peeled != kUsuallyPeeled) {
    table.emplace_back("layers peeled", std::to_string(effective.peeled) + " (peel)");
  }
  if (!effective.adapts.empty())
    table.emplace_back("chosen while it runs", list(effective.adapts) + " (adapt)");
  if (effective.auto_sensitivity) table.emplace_back("minimum component size", "adapts to the video");
  if (effective.frame.empty()) return table;
  if (effective.watched) table.emplace_back("watched", percent(*effective.watched) + " of the frame");
  table.emplace_back("memory", memory_text(effective.memory));
  return table;
}

std::string table_of(const Effective& effective) {
  constexpr std::size_t kColumn = 28;
  std::string text = "in effect";
  if (!effective.frame.empty()) {
    text += " at " + std::to_string(effective.frame.width) + 'x' + std::to_string(effective.frame.height);
  }
  text += ":\n";
  for (const auto& [what, value] : rows(effective)) {
    const std::string name = std::string("  ") + what;
    text.append(name).append(kColumn - name.size(), ' ').append(value).append("\n");
  }
  return text;
}

std::string summary(const Verdict& verdict) {
  std::string text;
  for (const Severity severity : kWorstFirst) {
    const auto count = std::count_if(verdict.findings.begin(), verdict.findings.end(),
                                     [=](const Finding& finding) { return finding.severity == severity; });
    if (count == 0) continue;
    text.append(text.empty() ? "" : ", ").append(std::to_string(count)).append(" ");
    text.append(name_of(severity)).append(count == 1 ? "" : "s");
  }
  return text.empty() ? "no findings" : text;
}

}  // namespace

std::string sentence(const std::string& name, const Finding& finding) {
  return place(name, finding) + sentence_of(finding);
}

std::string to_text(const std::string& name, const Verdict& verdict) {
  std::string text;
  for (const Severity severity : kWorstFirst) {
    for (const Finding& finding : verdict.findings) {
      if (finding.severity != severity) continue;
      text.append(place(name, finding)).append(name_of(severity)).append(": ");
      text.append(sentence_of(finding)).append("\n");
    }
  }
  if (verdict.effective) text += table_of(*verdict.effective);
  return text + name + ": " + summary(verdict) + '\n';
}

}  // namespace lm::host::detector::check
