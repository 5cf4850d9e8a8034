// The conditions of a run, printed above its figures.
#pragma once

#include <string>

namespace lm::bench {

std::string processor();
void print_header(const std::string& commit, const std::string& yardstick_commit);

}  // namespace lm::bench
