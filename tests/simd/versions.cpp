#include "tests/simd/versions.h"

std::vector<std::string> namesOf(const lm::Kernels& kernels) {
  return {nameOf(kernels.replace, lm::replaceVersions), nameOf(kernels.genRdDiff, lm::genRdDiffVersions),
          nameOf(kernels.prune, lm::pruneVersions), nameOf(kernels.match, lm::matchVersions),
          nameOf(kernels.touch, lm::touchVersions)};
}

std::vector<std::string> namesOf(const lm::ModelKernels& kernels) {
  return {nameOf(kernels.takeFrame, lm::takeFrameVersions), nameOf(kernels.findBusy, lm::findBusyVersions),
          nameOf(kernels.settleBlock, lm::settleBlockVersions),
          nameOf(kernels.matchBlock, lm::matchBlockVersions),
          nameOf(kernels.findUpdateWork, lm::findUpdateWorkVersions)};
}

std::vector<std::string> namesOf(const lm::MaskKernels& kernels) {
  return {nameOf(kernels.packRow, lm::packRowVersions), nameOf(kernels.unpackRow, lm::unpackRowVersions)};
}
