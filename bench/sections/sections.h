// The measurements, one function each: it adds records and prints a table.
#pragma once

#include <string>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/race.h"
#include "bench/records.h"

namespace lm::bench {

struct Plan {
  Libraries libraries;
  std::vector<std::string> scenes;
  std::vector<cv::Size> sizes;
  int frames = 0;  // timed frames per row; 0: depends on the size
};

// Whole frames of every scene and size. False if a result is wrong; the error is printed.
bool measure_frames(const Plan& plan, Records& records);

// The others are measured at 1920x1080.
void measure_first_frame(const Plan& plan, Records& records);
void measure_memory(const Plan& plan, Records& records);
void measure_regions(const Plan& plan, Records& records);
void measure_stages(const Plan& plan, Records& records);
void measure_objects(Records& records);

}  // namespace lm::bench
