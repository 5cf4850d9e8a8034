// The figures of a run.
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
  std::chrono::microseconds video{0};  // from the first frame's start to the last frame's end
  std::chrono::microseconds work{0};   // what it took
  source::SourceCounts source;
};

// Frames per second of work; 0 when no time has passed.
double speed(const Figures& figures);

// Adds all but the work and the counts of the source to a JSON object.
void add_figures(Json::Value& value, const Figures& figures);
// Nothing if `value` does not have them.
std::optional<Figures> figures_from(const Json::Value& value);

// How the process of a single file reports to the one that started it.
void write_figures(const std::string& file, const Figures& figures);
// Nothing if the process ended before it wrote them.
std::optional<Figures> read_figures(const std::string& file);

}  // namespace lm::host::commands::run
