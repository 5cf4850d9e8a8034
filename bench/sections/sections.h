// The measurements, one function each: it adds records and prints a table.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/race.h"
#include "bench/records.h"

namespace lm::bench {

struct Plan {
  Libraries libraries;
  std::vector<std::pair<std::string, cv::Size>> rows;  // scenes and sizes of measure_frames
  int frames = 0;                                      // timed frames of a row; 0: depends on the size
  bool brief = false;                                  // only what the requirements need
};

// How many frames of a scene are timed.
int timed_frames(const Plan& plan, const Scene& scene);

// Whole frames of every row. False if a result is wrong; the error is printed.
bool measure_frames(const Plan& plan, Records& records);

// The others are measured at 1920x1080.
void measure_first_frame(const Plan& plan, Records& records);
void measure_memory(const Plan& plan, Records& records);
void measure_savings(const Plan& plan, Records& records);

// Runs bench_level under Valgrind.
void measure_instructions(const Plan& plan, Records& records);

}  // namespace lm::bench
