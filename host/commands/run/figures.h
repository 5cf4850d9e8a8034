// Statistics of a run.
#pragma once

#include <json/forwards.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "host/source/source.h"

namespace lm::host::commands::run {

struct Figures {
  std::int64_t frames = 0;
  std::int64_t frames_with_motion = 0;
  std::int64_t events = 0;
  std::int64_t clutter = 0;            // boxes left out
  std::chrono::microseconds video{0};  // from the first frame's start to the last frame's end
  std::chrono::microseconds work{0};   // processing time
  source::SourceCounts source;
};

// Frames per second of processing time; 0 if no time has passed.
double speed(const Figures& figures);

// Adds everything except the processing time and the source's statistics to a JSON object.
void add_figures(Json::Value& value, const Figures& figures);
// None if `value` lacks them.
std::optional<Figures> figures_from(const Json::Value& value);

// For the process that started this one, in a run over many files.
void write_figures(const std::string& file, const Figures& figures);
// None if the process ended before it wrote them.
std::optional<Figures> read_figures(const std::string& file);

}  // namespace lm::host::commands::run
