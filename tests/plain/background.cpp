// The background model: seeding, differences, classification and update.
#include <algorithm>
#include <cstdlib>

#include "tests/plain/model.h"

namespace plain {

bool Model::seed() {
  const std::size_t n = static_cast<std::size_t>(numPixel);
  if (curFrame.empty() || bgImg.empty() || nbrCursor.empty() || bgModel.size() != n || nbrIdx.size() != n ||
      !holdsFrames()) {
    return false;
  }
  const std::size_t channels = static_cast<std::size_t>(frmChn);
  const auto copyPixel = [&](std::size_t from, std::array<Byte, 4>& slot) {
    for (std::size_t c = 0; c < channels; ++c) slot[c] = curFrame[from * channels + c];
  };
  for (std::size_t i = 0; i < bgModel.size(); ++i) {
    copyPixel(i, bgModel[i][0]);
    for (std::size_t slot = 1; slot < 20; ++slot) copyPixel(nextNeighbour(i), bgModel[i][slot]);
    for (std::size_t c = 0; c < channels; ++c) bgImg[i * channels + c] = curFrame[i * channels + c];
  }
  return true;
}

// The pixel's next neighbour, in turn.
std::size_t Model::nextNeighbour(std::size_t i) {
  const std::int32_t entry = nbrIdx[i][nbrCursor[i]];
  ++nbrCursor[i];
  if (nbrCursor[i] == static_cast<std::uint32_t>(numNbr)) {
    mark(Branch::neighbourCursorWraps);
    nbrCursor[i] = 0;
  }
  return entry == -1 ? i : static_cast<std::size_t>(entry);
}

void Model::difference() {
  const std::size_t n = static_cast<std::size_t>(numPixel);
  skipFrame = false;
  const bool fits = wrapMul(szImgX, szImgY) <= numPixel && (prevFrame.empty() || holdsFrames());
  if (!isSized() || !fits) return;
  if (prevFrame.empty()) {
    if (rdDiff.empty()) rdDiff.assign(n, 255);
  } else {
    differenceInTurn(n);
  }
  if (!prevFgMask.empty()) return;
  prevFgMask.assign(n, 1);
  if (fgMask.empty()) fgMask.assign(n, 0);
}

void Model::differenceInTurn(std::size_t n) {
  const int channel = diffChn < 0 || diffChn > 2 ? 0 : diffChn;
  mark(diffChn < 3 ? Branch::differenceOnTurn : Branch::differenceFourthTurn);
  ++diffChn;
  if (diffChn >= frmChn) {
    mark(Branch::differenceTurnWraps);
    diffChn = 0;
  }
  if (rdDiff.empty()) rdDiff.assign(n, 0);
  if (!curFrame.empty()) differenceOf(prevFrame, curFrame, rdDiff, channel);
  if (illumChange) {
    if (illumDiff.empty()) illumDiff.assign(n, 0);
    if (!curFrame.empty() && !bgImg.empty()) differenceOf(bgImg, curFrame, illumDiff, channel);
  } else {
    mark(Branch::differenceNoIllumination);
  }
}

void Model::differenceOf(const std::vector<Byte>& a, const std::vector<Byte>& b, std::vector<Byte>& out,
                         int channel) const {
  const std::size_t total = static_cast<std::size_t>(std::max(wrapMul(szImgX, szImgY), 0) * frmChn);
  std::size_t p = 0;
  for (std::size_t k = static_cast<std::size_t>(channel); k < total; k += static_cast<std::size_t>(frmChn)) {
    out[p++] = static_cast<Byte>(std::abs(a[k] - b[k]));
  }
}

bool Model::canClassify() const {
  return isSized() && holdsFrames() && !roiMask.empty() && !fgMask.empty() && !prevFgMask.empty() &&
         !rdDiff.empty() && !curFrame.empty() && !absorbMask.empty() && !fgLife.empty() && !minDist.empty();
}

bool Model::classify() {
  if (!canClassify()) return false;
  for (std::size_t i = 0; i < bgModel.size(); ++i) {
    if (!inside(i)) {
      mark(Branch::pixelOutside);
      fgMask[i] = 0;
      continue;
    }
    if (rdDiff[i] <= thrHeuris && prevFgMask[i] == 0) {
      mark(Branch::pixelUnchanged);
      markIf(rdDiff[i] == thrHeuris, Branch::pixelUnchangedAtBound);
    } else {
      if (absorbs(i)) continue;
      fgMask[i] = matchesModel(i) ? 0 : 255;
    }
    if (ghostSuppression)
      accountLife(i);
    else
      mark(Branch::ghostOff);
  }
  return true;
}

// Foreground that has been still for long enough becomes background.
bool Model::absorbs(std::size_t i) {
  const float limit = static_cast<float>(lifeStaticFrm);
  markIf(ghostSuppression && fgLife[i] == limit, Branch::lifeAtBound);
  if (!ghostSuppression || !(fgLife[i] > limit)) return false;
  mark(Branch::pixelAbsorbed);
  fgMask[i] = 0;
  absorbMask[i] = 255;
  fgLife[i] = static_cast<float>(wrapAdd(lifeStaticFrm, 1));
  return true;
}

bool Model::matchesModel(std::size_t i) {
  int matches = 0;
  std::uint32_t smallest = 999;
  bool background = false;
  for (std::size_t slot = 0; slot < 20 && !background; ++slot) {
    const int distance = matchDistance(i, bgModel[i][slot]);
    if (distance >= 0) {
      ++matches;
      smallest = std::min(smallest, static_cast<std::uint32_t>(distance));
    }
    // Grey frames check the count after every slot, colour frames only after a match.
    if (distance >= 0 || frmChn == 1) background = matches >= minMatchNum;
    markIf(background && distance < 0, Branch::matchEndsUnmatched);
  }
  minDist[i] = smallest;
  mark(background ? Branch::matchBackground : Branch::matchForeground);
  markIf(smallest == 999, Branch::matchNone);
  return background;
}

// Sum of the channels' differences; -1 if one exceeds the radius. A fourth channel never counts.
int Model::matchDistance(std::size_t i, const std::array<Byte, 4>& sample) {
  const std::size_t channels = static_cast<std::size_t>(frmChn);
  int sum = 0, largest = 0;
  for (std::size_t c = 0; c < std::min<std::size_t>(channels, 3); ++c) {
    const int apart = std::abs(curFrame[i * channels + c] - sample[c]);
    sum += apart;
    largest = std::max(largest, apart);
  }
  markIf(largest == thrMatch, Branch::matchAtRadius);
  markIf(largest - 1 == thrMatch, Branch::matchJustOutside);
  return largest <= thrMatch ? sum : -1;
}

void Model::accountLife(std::size_t i) {
  const int change = rdDiff[i];
  const bool foreground = fgMask[i] == 255;
  if (foreground && change <= 10) {
    mark(Branch::lifeFull);
    markIf(change == 10, Branch::lifeFullAtBound);
    fgLife[i] += 1.0F;
  } else if (foreground && change <= thresholdX2) {
    mark(Branch::lifeHalf);
    markIf(change == thresholdX2, Branch::lifeHalfAtBound);
    fgLife[i] += 0.5F;
  } else if (foreground && change <= thresholdX3) {
    mark(Branch::lifeFifth);
    markIf(change == thresholdX3, Branch::lifeFifthAtBound);
    fgLife[i] += 0.2F;
  } else if (!foreground && absorbMask[i] == 255) {
    mark(Branch::lifePinned);
    fgLife[i] = static_cast<float>(wrapAdd(lifeStaticFrm, 1));
  } else if (fgLife[i] >= 1.0F) {
    mark(foreground ? Branch::lifeForegroundFalls : Branch::lifeBackgroundFalls);
    markIf(fgLife[i] == 1.0F, Branch::lifeFallsFromOne);
    fgLife[i] -= 0.8F;
  } else {
    mark(foreground ? Branch::lifeForegroundRests : Branch::lifeBackgroundRests);
  }
}

bool Model::canUpdate() const {
  return canClassify() && !bgImg.empty() && !updTimer.empty() && !refreshCount.empty() &&
         !sampleCursor.empty() && !nbrCursor.empty() && nbrIdx.size() == bgModel.size() &&
         (!illumChange || !illumDiff.empty());
}

bool Model::update() {
  if (!canUpdate()) return false;
  float examined = 0, changed = 0;
  for (std::size_t i = 0; i < bgModel.size(); ++i) {
    if (!inside(i)) continue;
    updTimer[i] = wrapSub(updTimer[i], 1);
    if (ghostSuppression && absorbMask[i] == 255) {
      mark(Branch::absorbedWritten);
      writeSample(i);
      absorbMask[i] = 0;
      continue;
    }
    markIf(absorbMask[i] == 255, Branch::absorbedKeptGhostOff);
    if (fgMask[i] != 0) {
      mark(Branch::foregroundKeptOut);
      continue;
    }
    if (illumChange) {
      examined += 1.0F;
      if (illumDiff[i] > thrIllum) changed += 1.0F;
      if (followIllumination(i)) continue;
    } else {
      mark(Branch::illuminationOff);
    }
    refresh(i);
  }
  markIf(examined == 0.0F, Branch::ratioNothingExamined);
  illumRatio = examined > 0.0F ? changed / examined : 0.0F;
  return true;
}

// Whether the pixel was written because the lighting changed.
bool Model::followIllumination(std::size_t i) {
  markIf(illumDiff[i] == thrIllum, Branch::illuminationAtBound);
  if (illumDiff[i] <= thrIllum) {
    mark(Branch::illuminationSame);
    return false;
  }
  markIf(illumRatio == 0.15F, Branch::ratioAtBound);
  if (illumRatio >= 0.15F) {
    mark(Branch::illuminationGlobal);
    writeSample(i);
    return true;
  }
  if (illumDiff[nextNeighbour(i)] > thrIllum) {
    mark(Branch::illuminationSpreads);
    writeSample(i);
    return true;
  }
  mark(Branch::illuminationIsolated);
  return false;
}

// Of background pixels that changed and match only distantly, one in sixteen frames is written.
void Model::refresh(std::size_t i) {
  if (rdDiff[i] <= thrHeuris && prevFgMask[i] == 0) {
    mark(Branch::updateUnchanged);
    return;
  }
  if (updTimer[i] > 0) {
    mark(Branch::timerRunning);
    return;
  }
  mark(updTimer[i] == 0 ? Branch::timerEndsAtZero : Branch::timerBelowZero);
  updTimer[i] = 0;
  if (static_cast<std::int64_t>(minDist[i]) <= thrMatch) {
    mark(Branch::closeMatch);
    markIf(static_cast<std::int64_t>(minDist[i]) == thrMatch, Branch::closeMatchAtBound);
    return;
  }
  const std::uint32_t count = ++refreshCount[i];
  if (count == 16) {
    mark(Branch::refreshWraps);
    refreshCount[i] = 0;
  } else if (count == 2) {
    mark(Branch::refreshWrites);
    writeSample(i);
    updTimer[i] = 15;
  } else {
    mark(Branch::refreshCounts);
  }
}

void Model::writeSample(std::size_t i) {
  const std::size_t slot = sampleCursor[i];
  const int next = static_cast<int>(slot) + 1;
  const bool locked = lockSegStart <= next && next <= lockSegEnd;
  markIf(next == lockSegStart, Branch::cursorAtLockStart);
  markIf(next == lockSegEnd, Branch::cursorAtLockEnd);
  const int stepped = locked ? next + 1 : next;
  const bool wraps = stepped >= 20;
  if (locked)
    mark(wraps ? Branch::cursorStepsOverAndWraps : Branch::cursorStepsOver);
  else
    mark(wraps ? Branch::cursorWraps : Branch::cursorSteps);
  sampleCursor[i] = wraps ? 0 : static_cast<std::uint32_t>(stepped);

  const std::size_t channels = static_cast<std::size_t>(frmChn);
  for (std::size_t c = 0; c < channels; ++c) {
    bgModel[i][slot][c] = curFrame[i * channels + c];
    bgImg[i * channels + c] = curFrame[i * channels + c];
  }
}

}  // namespace plain
