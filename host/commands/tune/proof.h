// Proves which parts of a sample have motion and which are quiet, where the user marked nothing.
#pragma once

#include <vector>

#include "host/commands/tune/seen.h"

namespace lm::host::commands::tune {

// An object that moves consistently: between two moments at least 0.4 s apart it gets away from where it was
// by half its size and by half the length of its way. What sways, flickers or grows in place does not.
struct Mover {
  std::int64_t id = 0;
  std::int64_t first = 0;  // microseconds, of its boxes
  std::int64_t last = 0;
  bool left = false;  // its last box touches the edge of the frame; otherwise it may still be there
};

std::vector<Mover> movers_in(const Seen& seen);

// Fills in the kind of spans that `marked` lacks, in whole seconds. Motion: something moves consistently in
// one of the `judges`. Quiet: in none of them, and not within a second before, or after it left; what does
// not leave may stand there until the end. Seconds with boxes of a lighting change and seconds that touch a
// marked span are neither.
Marks with_proofs(Marks marked, const std::vector<const Seen*>& judges);

// The boxes around what moves consistently, in these spans.
std::vector<MovingBox> moving_boxes(const Seen& start, const Spans& motion);

}  // namespace lm::host::commands::tune
