// What the tests add to the table of kernel versions.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "simd/cpu_level.h"
#include "simd/kernels.h"
#include "simd/versions.h"

namespace lm {

template <class Function>
bool isRunnable(const Version<Function>& version) {
  return version.level <= GetCpuInstructionSet();
}

template <class Function>
std::ostream& operator<<(std::ostream& stream, const Version<Function>& version) {
  return stream << version.name;
}

}  // namespace lm

// The names of the versions that the pointers refer to, in the table's order of kernels.
std::vector<std::string> namesOf(const lm::Kernels& kernels);
