#include "tests/simd/versions.h"

std::vector<std::string> namesOf(const lm::Kernels& kernels) {
  return {nameOf(kernels.replace, lm::replaceVersions), nameOf(kernels.genRdDiff, lm::genRdDiffVersions),
          nameOf(kernels.prune, lm::pruneVersions), nameOf(kernels.match, lm::matchVersions),
          nameOf(kernels.touch, lm::touchVersions)};
}
