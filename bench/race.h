// Candidates side by side, frame by frame, in one process.
#pragma once

#include <string>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/scene.h"

namespace lm::bench {

struct Rounds {
  int warm = 16;   // frames before the clock counts, the first one included
  int timed = 40;  // rounded up to whole cycles of the scene
};

struct Lap {
  std::string name;
  bool divided = false;
  double mask = 0;                     // milliseconds; medians
  double whole = 0;                    // the mask included
  double foreground = -1;              // mean share of the mask; -1 where there is no mask
  std::vector<std::string> documents;  // one for each frame, the warm-up included
};

// Each frame is handed to all candidates before the next one; who goes first changes from frame to frame.
std::vector<Lap> race(const std::vector<Candidate>& candidates, const Scene& scene, Rounds rounds);

// Of `values`, which may not be empty.
double median(std::vector<double> values);

double milliseconds_of(const std::function<void()>& work);

}  // namespace lm::bench
