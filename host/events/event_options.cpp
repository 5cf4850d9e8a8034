#include "host/events/event_options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>

#include "host/base/number_option.h"

namespace lm::host::events {
namespace {

constexpr double kDay = 24 * 60 * 60;

// `text` as a number, if all of it is one.
std::optional<std::chrono::microseconds> seconds(std::string_view text) {
  double value = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = error == std::errc() && rest == text.data() + text.size();
  if (!whole || !(value >= 0 && value <= 1e9)) return std::nullopt;
  return std::chrono::microseconds(std::llround(value * 1e6));
}

}  // namespace

std::optional<TimeSpan> parse_span(const std::string& text) {
  const std::string_view all = text;
  const std::size_t dash = all.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto from = seconds(all.substr(0, dash));
  const auto to = seconds(all.substr(dash + 1));
  if (!from || !to || *to < *from) return std::nullopt;
  return TimeSpan{*from, *to};
}

void add_event_options(CLI::App& run, EventOptions& options) {
  const char* group = "Events";
  const auto add_time = [&](const char* name, double& value, const char* help, const char* preset) {
    base::add_number(run, {name, "SECONDS", help, {0, kDay, "s"}, preset}, [&value](double seconds) {
      value = seconds;
    })->group(group);
  };
  run.add_option("--events", options.file, "Write the events (.json, .jsonl or .csv)")
      ->type_name("FILE")
      ->group(group)
      ->check([](const std::string& file) {
        const bool known = file.ends_with(".json") || file.ends_with(".jsonl") || file.ends_with(".csv");
        return known ? "" : "must end in .json, .jsonl or .csv, not " + file;
      });
  add_time("--min-event", options.rules.min_event, "Minimum length of an event", "0.5");
  add_time("--gap", options.rules.gap, "Quiet time that ends an event", "2");
  add_time("--pre", options.rules.pre, "Time shown before each event", "2");
  add_time("--post", options.rules.post, "Time shown after each event", "2");
  run.add_option(
         "--explain", options.explain,
         "Explain why there were boxes and events, or none, between these times in seconds, such as 11-13.5")
      ->type_name("FROM-TO")
      ->group(group)
      ->check([](const std::string& span) {
        return parse_span(span) ? "" : "must be two times in seconds, such as 11-13.5, not " + span;
      });
}

}  // namespace lm::host::events
