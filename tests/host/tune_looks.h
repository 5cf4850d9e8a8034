// Constructed figures for the rules of tune.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "host/commands/tune/seen.h"
#include "host/commands/tune/table.h"

namespace tune_looks {

using namespace lm::host::events;
using namespace lm::host::commands::tune;

inline TimeSpan span(int from, int to) { return {std::chrono::seconds(from), std::chrono::seconds(to)}; }

inline const cv::Rect2d kBox(0.4, 0.4, 0.1, 0.2);

// Two looks per second; '#': a box that stays in place, 'L': a box of a lighting change, anything else: none.
inline Seen seen(const std::string& looks) {
  Seen result;
  for (const char look : looks) {
    Look one;
    one.time = static_cast<std::int64_t>(result.looks.size()) * 500'000;
    if (look == '#') one.boxes.push_back({kBox, 1, {}});
    if (look == 'L') one.by_light = 1;
    result.looks.push_back(one);
  }
  return result;
}

inline Happening motion(double from, double to) {
  return {static_cast<std::int64_t>(from * 1e6), static_cast<std::int64_t>(to * 1e6), EventKind::kMotion};
}

// A box of the size 0.1 x 0.2 in a square frame, two looks per second, at these places across.
inline Seen moving_along(const std::vector<double>& places, std::int64_t id = 1) {
  Seen result;
  for (const double x : places) {
    Look look;
    look.time = static_cast<std::int64_t>(result.looks.size()) * 500'000;
    if (x >= 0) look.boxes.push_back({{x, 0.4, 0.1, 0.2}, id, {}});
    result.looks.push_back(look);
  }
  return result;
}

inline constexpr double kNone = -1;

// It moves from 3 to 4.5 s, and is at the edge.
inline const std::vector<double> kWalk{kNone, kNone, kNone, kNone, kNone, kNone, 0.3,   0.5,
                                       0.7,   0.9,   kNone, kNone, kNone, kNone, kNone, kNone};

inline void expect_spans(const Spans& actual, const Spans& expected) {
  EXPECT_EQ(text_of(actual, false), text_of(expected, false));
}

}  // namespace tune_looks
