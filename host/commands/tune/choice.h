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
};

// The position of the best setting in `all`, which must not be empty. Each rule applies to those that the
// previous rules left:
//  - a setting without any motion is excluded, unless all are;
//  - fewest frames with boxes in quiet spans;
//  - most motion spans found;
//  - at least 19/20 of the largest number of frames with boxes in motion spans;
//  - least sensitive, then the largest minimum box size, then the adaptation nearest to 3.
// Without motion spans there is no measure of what must be found, so the last rule is reversed: the most
// sensitive setting that is equally quiet, with the smallest minimum box size.
std::size_t choose(const std::vector<Candidate>& all, const Marks& marks);

// One or more sentences for the user.
std::string why(const std::vector<Candidate>& all, std::size_t chosen, const Marks& marks);

}  // namespace lm::host::commands::tune
