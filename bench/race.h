// Compares candidates frame by frame, in one process.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/scene.h"

namespace lm::bench {

struct Rounds {
  int warm = 16;   // untimed frames, including the first
  int timed = 40;  // rounded up to whole cycles of the scene; fewer if it ends
};

struct Lap {
  std::string name;
  bool divided = false;
  double mask = 0;                     // milliseconds; medians
  double whole = 0;                    // including the mask
  double mean = 0;                     // of the whole
  double foreground = -1;              // mean share of the mask; -1 without a mask
  std::vector<std::string> documents;  // one per frame, including the warm-up
};

// Each frame is passed to all candidates before the next one; the order rotates from frame to frame.
std::vector<Lap> race(const std::vector<Candidate>& candidates, Scene scene, Rounds rounds);

// The lap of a candidate; null if it did not take part.
const Lap* find(const std::vector<Lap>& laps, const std::string& name);

// `values` must not be empty.
double median(std::vector<double> values);

double milliseconds_of(const std::function<void()>& work);

}  // namespace lm::bench
