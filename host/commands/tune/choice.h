// Chooses the setting to propose, and explains the choice.
#pragma once

#include <string>
#include <vector>

#include "host/commands/tune/seen.h"
#include "host/commands/tune/setting.h"

namespace lm::host::commands::tune {

struct Candidate {
  Setting setting;
  Figures figures;
  Distance distance{};  // from the starting configuration
};

// The position of the setting to propose. The first one is the starting configuration, which stays unless
// another one is better, that is:
//  - It finds what the start finds: as many marked spans of motion, with boxes in at least 19/20 of the
//    frames; where no motion is marked, at least 99/100 of the boxes around what moves.
//  - It has boxes in fewer frames of the quiet spans, in proved ones in at most half as many and at least
//    five fewer; or in as many, and finds more in marked motion: a further span, or boxes in more than 20/19
//    of the frames. If the start finds nothing in marked motion, anything found is better.
// Of those that are better: fewest frames with boxes in quiet spans, then most spans of motion found, then at
// least 19/20 of the most frames with boxes in marked motion, then nearest to the start.
std::size_t choose(const std::vector<Candidate>& all, const Marks& marks);

// One or more sentences for the user. `adapts`: the start chooses its sensitivity by the noise.
std::string why(const std::vector<Candidate>& all, std::size_t chosen, const Marks& marks,
                bool adapts = false);

}  // namespace lm::host::commands::tune
