// Command-line options of events.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace lm::host::events {

struct TimeSpan {
  std::chrono::microseconds from{0};
  std::chrono::microseconds to{0};
};

// "11-13.5": seconds of video; none for any other text.
std::optional<TimeSpan> parse_span(const std::string& text);

// Seconds of video.
struct EventRules {
  double min_event = 0.5;  // minimum length, from the first to the last frame with boxes
  double gap = 2;          // time without boxes that ends an event
  double pre = 2;          // time shown before the event
  double post = 2;         // ... and after it
};

struct EventOptions {
  EventRules rules;
  std::string file;     // .json, .jsonl or .csv; none when empty
  std::string explain;  // a span of parse_span; none when empty
};

void add_event_options(CLI::App& run, EventOptions& options);

}  // namespace lm::host::events
