// The reference versions of the model's kernels.
#include <algorithm>
#include <cassert>
#include <cstring>

#include "simd/contracts.h"
#include "simd/life.h"
#include "simd/simd.h"

namespace lm {
namespace {

constexpr std::uint8_t foreground = 255;
constexpr std::uint8_t background = 0;

bool isIdle(const ClassifyPlanes& planes, std::size_t pixel) {
  return planes.fgMask[pixel] == 0 && planes.absorbMask[pixel] != 255 && planes.fgLife[pixel] < leastLife;
}

// Adds `pixel`, bit `bit` of its block, to its mask in `busy` unless it is idle.
void judge(const ClassifyPlanes& planes, std::size_t pixel, std::uint32_t bit, BusyPixels& busy) {
  if (planes.roiMask[pixel] == 0) {
    if (planes.fgMask[pixel] != 0) busy.outside |= bit;
  } else if (planes.rdDiff[pixel] <= planes.unchanged && planes.prevFgMask[pixel] == 0) {
    if (planes.accountLife && !isIdle(planes, pixel)) busy.unchanged |= bit;
  } else if (planes.accountLife && planes.fgLife[pixel] > planes.life.limit) {
    busy.absorbed |= bit;
  } else {
    busy.compared |= bit;
  }
}

void accountLife(const ClassifyPlanes& planes, std::size_t pixel) {
  float& life = planes.fgLife[pixel];
  if (planes.fgMask[pixel] == foreground) {
    life = gainLife(life, planes.rdDiff[pixel], planes.life.band2, planes.life.band3);
  } else if (planes.absorbMask[pixel] == 255) {
    life = planes.life.absorbed;
  } else {
    life = decayLife(life);
  }
}

void settle(const ClassifyPlanes& planes, std::size_t pixel, std::uint32_t bit, const BusyPixels& busy,
            bool matched) {
  if ((busy.compared & bit) != 0) planes.fgMask[pixel] = matched ? background : foreground;
  if (((busy.outside | busy.absorbed) & bit) != 0) planes.fgMask[pixel] = background;
  if ((busy.absorbed & bit) != 0) {
    planes.absorbMask[pixel] = 255;
    planes.fgLife[pixel] = planes.life.absorbed;
  }
  if (planes.accountLife && ((busy.compared | busy.unchanged) & bit) != 0) accountLife(planes, pixel);
}

// Decrements the timer of `pixel` and adds it, bit `bit` of its block, to its masks in `work`.
void findWork(const UpdatePlanes& planes, std::size_t pixel, std::uint32_t bit, UpdateWork& work,
              std::int64_t& examined) {
  if (planes.roiMask[pixel] == 0) return;
  planes.updTimer[pixel] = static_cast<std::int32_t>(static_cast<std::uint32_t>(planes.updTimer[pixel]) - 1U);
  if (planes.absorbing && planes.absorbMask[pixel] == 255) {
    work.absorbed |= bit;
    return;
  }
  if (planes.fgMask[pixel] != 0) return;
  if (planes.watchLight) {
    ++examined;
    if (planes.illumDiff[pixel] > planes.sameLight) work.lit |= bit;
  }
  if (planes.rdDiff[pixel] > planes.unchanged || planes.prevFgMask[pixel] != 0) work.changed |= bit;
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

void takeFrame_c(const FramePlanes& planes, std::size_t begin, std::size_t end) {
  assert(canTakeFrame(planes, begin, end));
  if (begin >= end) return;
  const auto channels = static_cast<std::size_t>(planes.channels);
  const std::size_t offset = begin * channels;
  const auto pixels = static_cast<int>(end - begin);
  std::uint8_t* current = planes.curFrame + offset;
  if (planes.frame != nullptr) std::memcpy(current, planes.frame + offset, (end - begin) * channels);
  const auto differ = [&](const std::uint8_t* from, std::uint8_t* out) {
    simd::genRdDiff(from + offset, current, out + begin, pixels, 1, planes.channels, planes.channel);
  };
  if (planes.rdDiff != nullptr) differ(planes.prevFrame, planes.rdDiff);
  if (planes.illumDiff != nullptr) differ(planes.bgImg, planes.illumDiff);
  if (planes.keep) std::memcpy(planes.prevFrame + offset, current, (end - begin) * channels);
}

std::size_t findBusy_c(const ClassifyPlanes& planes, std::size_t& from, std::size_t end, BusyBlock* found,
                       std::size_t room) {
  assert(canFindBusy(found, room));
  std::size_t count = 0;
  for (; count < room && from < end; from += blockPixels) {
    BusyPixels busy{};
    const std::size_t pixels = std::min(blockPixels, end - from);
    for (std::size_t k = 0; k < pixels; ++k) judge(planes, from + k, 1U << k, busy);
    if (busy.any()) found[count++] = {.begin = from, .pixels = busy};
  }
  return count;
}

void settleBlock_c(const ClassifyPlanes& planes, std::size_t begin, std::size_t end, const BusyPixels& busy,
                   std::uint32_t matched) {
  assert(canSettleBlock(planes, begin, end, busy, matched));
  const std::size_t count = std::min(blockPixels, end - begin);
  for (std::size_t k = 0; k < count; ++k) {
    settle(planes, begin + k, 1U << k, busy, (matched >> k & 1U) != 0);
  }
}

std::uint32_t matchBlock_c(const MatchRule& rule, const std::uint8_t* samples, const std::uint8_t* values,
                           std::uint32_t wanted, std::uint32_t* minDist) {
  assert(canMatchBlock(rule, wanted, minDist));
  std::uint32_t enough = 0;
  for (std::size_t k = 0; k < blockPixels; ++k) {
    if ((wanted >> k & 1U) == 0) continue;
    const std::uint8_t* value = values + k * static_cast<std::size_t>(rule.channels);
    if (matchPixel(rule, samples + k * 4 * samplesPerPixel, value, minDist[k])) enough |= 1U << k;
  }
  return enough;
}

std::size_t findUpdateWork_c(const UpdatePlanes& planes, std::size_t& from, std::size_t end,
                             UpdateBlock* found, std::size_t room, std::int64_t& examined) {
  assert(canFindUpdateWork(planes, found, room));
  std::size_t count = 0;
  for (; count < room && from < end; from += blockPixels) {
    UpdateWork work{};
    const std::size_t pixels = std::min(blockPixels, end - from);
    for (std::size_t k = 0; k < pixels; ++k) findWork(planes, from + k, 1U << k, work, examined);
    if (work.any()) found[count++] = {.begin = from, .work = work};
  }
  return count;
}

}  // namespace lm
