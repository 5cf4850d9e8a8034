#include "host/events/event_options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>

namespace lm::host {
namespace {

constexpr double kDay = 24 * 60 * 60;

// The number that all of `text` is.
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
  const auto add = [&run](const char* name, double& value, const char* help) {
    run.add_option(name, value, help)
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, kDay))
        ->capture_default_str()
        ->group("Events");
  };
  run.add_option("--events", options.file, "Table of events (.json or .csv)")
      ->type_name("FILE")
      ->group("Events")
      ->check([](const std::string& file) {
        return file.ends_with(".json") || file.ends_with(".csv") ? ""
                                                                 : "must end in .json or .csv, not " + file;
      });
  add("--min-event", options.rules.min_event, "Shorter events do not count");
  add("--gap", options.rules.gap, "An event ends after so long without boxes");
  add("--pre", options.rules.pre, "Shown before each event");
  add("--post", options.rules.post, "Shown after each event");
  run.add_option("--explain", options.explain,
                 "Why there were boxes and events, or none,\nin a span of seconds")
      ->type_name("FROM-TO")
      ->group("Events")
      ->check([](const std::string& span) {
        return parse_span(span) ? "" : "must be two times in seconds, such as 11-13.5, not " + span;
      });
}

}  // namespace lm::host
