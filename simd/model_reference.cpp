// The plain versions of the model's kernels, and the choice between versions.
#include <algorithm>

#include "simd/cpu_level.h"
#include "simd/model_kernels.h"
#include "simd/simd.h"

namespace lm {
namespace {

bool isIdle(const ClassifyPlanes& planes, std::size_t pixel) {
  if (planes.roiMask[pixel] == 0) return planes.fgMask[pixel] == 0;
  if (planes.rdDiff[pixel] > planes.unchanged || planes.prevFgMask[pixel] != 0) return false;
  return !planes.accountLife ||
         (planes.fgMask[pixel] == 0 && planes.absorbMask[pixel] != 255 && planes.fgLife[pixel] < 1.0F);
}

// Match distance of a pixel and a sample, or -1.
int matchDistance(const MatchRule& rule, const std::uint8_t* value, const std::uint8_t* sample) {
  if (rule.channels != 1) return simd::isMatchVal_bgr24_c(value, sample, rule.radius);
  const int distance = *value > *sample ? *value - *sample : *sample - *value;
  return distance <= rule.radius ? distance : -1;
}

bool matchPixel(const MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* value,
                std::uint32_t& minDist) {
  std::uint32_t nearest = nothingMatched;
  int matches = 0;
  bool enough = false;
  for (std::size_t slot = 0; slot < samplesPerPixel && !enough; ++slot) {
    const int distance = matchDistance(rule, value, samples + 4 * slot);
    const bool matched = distance != -1;
    if (matched) {
      nearest = std::min(nearest, static_cast<std::uint32_t>(distance));
      ++matches;
    }
    enough = (matched || rule.channels == 1) && matches >= rule.needed;
  }
  minDist = nearest;
  return enough;
}

}  // namespace

std::size_t nextBusyBlock_c(const ClassifyPlanes& planes, std::size_t from, std::size_t end,
                            std::uint32_t& busy) {
  for (std::size_t begin = from; begin < end; begin += blockPixels) {
    const std::size_t count = std::min(blockPixels, end - begin);
    busy = 0;
    for (std::size_t k = 0; k < count; ++k) {
      if (!isIdle(planes, begin + k)) busy |= 1U << k;
    }
    if (busy != 0) return begin;
  }
  busy = 0;
  return end;
}

std::uint32_t matchBlock_c(const MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* values,
                           std::uint32_t wanted, std::uint32_t* minDist) {
  std::uint32_t enough = 0;
  for (std::size_t k = 0; k < blockPixels; ++k) {
    if ((wanted >> k & 1U) == 0) continue;
    const std::uint8_t* value = values + k * static_cast<std::size_t>(rule.channels);
    if (matchPixel(rule, samples + k * 4 * samplesPerPixel, value, minDist[k])) enough |= 1U << k;
  }
  return enough;
}

std::size_t nextUpdateBlock_c(const UpdatePlanes& planes, std::size_t from, std::size_t end, UpdateWork& work,
                              std::int64_t& examined) {
  for (std::size_t begin = from; begin < end; begin += blockPixels) {
    const std::size_t count = std::min(blockPixels, end - begin);
    work = {};
    for (std::size_t k = 0; k < count; ++k) {
      const std::size_t pixel = begin + k;
      const std::uint32_t bit = 1U << k;
      if (planes.roiMask[pixel] == 0) continue;
      planes.updTimer[pixel] =
          static_cast<std::int32_t>(static_cast<std::uint32_t>(planes.updTimer[pixel]) - 1U);
      if (planes.absorbing && planes.absorbMask[pixel] == 255) {
        work.absorbed |= bit;
        continue;
      }
      if (planes.fgMask[pixel] != 0) continue;
      if (planes.watchLight) {
        ++examined;
        if (planes.illumDiff[pixel] > planes.sameLight) work.lit |= bit;
      }
      if (planes.rdDiff[pixel] > planes.unchanged || planes.prevFgMask[pixel] != 0) work.changed |= bit;
    }
    if ((work.absorbed | work.lit | work.changed) != 0) return begin;
  }
  work = {};
  return end;
}

ModelKernels modelKernelsFor(int level) {
  if (level >= 8) return {nextBusyBlock_avx2, matchBlock_avx2, nextUpdateBlock_avx2};
  return {nextBusyBlock_c, matchBlock_c, nextUpdateBlock_c};
}

const ModelKernels& modelKernels() {
  static const ModelKernels kernels = modelKernelsFor(GetCpuInstructionSet());
  return kernels;
}

}  // namespace lm
