// Which of the settings that were tried is proposed, and why.
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

// Where in `all` the best one is; `all` is not empty. Rule after rule, each among what the ones before left:
//  1. a setting that finds no motion is out, unless none finds any;
//  2. the fewest frames with boxes in quiet spans;
//  3. the most spans of motion found;
//  4. at least 19 of 20 of the frames with boxes in spans of motion that the best of them has;
//  5. the least sensitive, then the largest least box, then the adaptation nearest to the usual level.
// Without spans of motion nothing tells what has to be found, so the last rule is turned round: the most
// sensitive one that stays as quiet, with the smallest least box.
std::size_t choose(const std::vector<Candidate>& all, const Marks& marks);

// A sentence or a few, for the user.
std::string why(const std::vector<Candidate>& all, std::size_t chosen, const Marks& marks);

}  // namespace lm::host::commands::tune
