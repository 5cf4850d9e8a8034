// One frame: its order, its time, and the buffers that the first one makes.
#include <algorithm>
#include <cstdlib>

#include "tests/plain/model.h"

namespace plain {

std::string Model::frameProc(const Byte* frame, int w, int h, int channels, const std::string& timestamp) {
  boxes.clear();
  setTimestamp(timestamp);
  learnBg(frame, w, h, channels);
  if (frmCount == 0 && fgMask.empty()) return "";  // refused before any frame was accepted
  boxes = objects(fgMask);
  return boxes.empty() ? (mark(Branch::resultEmpty), "") : resultText(timestamp);
}

bool Model::setTimestamp(const std::string& text) {
  const long long value = std::stoll(text);
  markIf(value < 0, Branch::timeNegative);
  curTimestamp = value < 0 ? -1 : value;
  return value >= 0;
}

bool Model::learnBg(const Byte* frame, int w, int h, int channels) {
  if (!preprocess(frame, w, h, channels)) return false;
  estFrameRate();
  updateLock();
  if (frmCount == 0) {
    mark(Branch::frameSeeds);
    sizeBuffers(w, h);
    seed();
  } else {
    mark(Branch::frameClassified);
    difference();
    classify();
    update();
    prevFgMask = fgMask;
  }
  const std::size_t bytes = static_cast<std::size_t>(w * h * channels);
  if (prevFrame.empty()) prevFrame.resize(bytes);
  std::copy_n(curFrame.begin(), bytes, prevFrame.begin());
  frmCount = wrapAdd(frmCount, 1);
  return true;
}

bool Model::preprocess(const Byte* frame, int w, int h, int channels) {
  const std::size_t bytes = static_cast<std::size_t>(w * h * channels);
  markIf(!curFrame.empty() && curFrame.size() < bytes, Branch::currentFrameGrows);
  curFrame.resize(std::max(curFrame.size(), bytes));
  std::copy_n(frame, bytes, curFrame.begin());
  frmChn = channels;  // stored before it is judged
  if (channels == 1 || channels == 3 || channels == 4) return true;
  mark(frmCount == 0 ? Branch::channelsRefusedFirst : Branch::channelsRefused);
  return false;
}

void Model::estFrameRate() {
  if (curTimestamp > 0)
    rateFromTimestamps();
  else
    rateFromClock();
}

void Model::rateFromTimestamps() {
  const std::int64_t before = prevTimestamp;
  prevTimestamp = curTimestamp;
  if (before == -1) {
    mark(Branch::rateFirstTimestamp);
    return;
  }
  const double seconds = static_cast<double>(curTimestamp - before) / 1000.0;
  if (seconds <= 0) {
    mark(Branch::rateNotLater);
    frmRate = 0.0;
    return;
  }
  frmRate = 1.0 / seconds;
  markIf(frmRate == 40.0, Branch::rateAtFastEnd);
  if (frmRate > 40.0) {
    mark(Branch::rateTooFast);
  } else if (frmRate < 3.0) {
    mark(Branch::rateTooSlow);
  } else {
    mark(Branch::rateUsable);
    lifeStaticFrm = truncated(lifeStatic * frmRate);
  }
}

void Model::rateFromClock() {
  curTime = now;
  elapsedUs = (curTime.tv_sec - prevTime.tv_sec) * usPerSec + curTime.tv_usec - prevTime.tv_usec;
  prevTime = curTime;
  const double elapsed = static_cast<double>(static_cast<std::uint64_t>(elapsedUs));
  const double rate = 1.0 / (elapsed / usPerSec);
  double increment = 0.01 * rate;
  if (rate < 3.0) {
    mark(Branch::clockTooSlow);
    increment = 0.03;
  } else if (rate > 40.0) {
    mark(Branch::clockTooFast);
    increment = 0.4;
  } else {
    mark(Branch::clockUsable);
  }
  frmRate = 0.99 * frmRate + increment;
  lifeStaticFrm = truncated(lifeStatic * frmRate);
}

void Model::updateLock() {
  if (numPeriodLock < 1) {
    mark(Branch::lockOff);
    return;
  }
  if (frmCount % numPeriodLock != 0) {
    mark(Branch::lockNotDue);
    return;
  }
  const int start = wrapAdd(lockSegStart, numSegmentLock);
  const int end = wrapAdd(start, numSegmentLock);
  markIf(start <= 19 && end == 20, Branch::lockEndsAtLastSlot);
  if (start <= 19 && end <= 20) {
    mark(Branch::lockMoves);
    lockSegStart = start;
    lockSegEnd = wrapSub(end, 1);
  } else {
    mark(start > 19 ? Branch::lockWrapsAtEnd : Branch::lockWrapsForRoom);
    lockSegStart = 0;
    lockSegEnd = wrapSub(numSegmentLock, 1);
  }
}

void Model::sizeBuffers(int w, int h) {
  szImgX = w;
  szImgY = h;
  numPixel = w * h;
  const std::size_t n = static_cast<std::size_t>(numPixel);
  if (roiMask.empty()) roiMask.resize(n);
  markIf(roiMask.size() < n, Branch::roiMaskShorterThanFrame);
  fgMask.resize(n);
  absorbMask.resize(n);
  updTimer.resize(n);
  nbrCursor.resize(n);
  sampleCursor.resize(n);
  refreshCount.resize(n);
  minDist.resize(n, 255);
  // A frame counter that ran all the way round sizes the engine again: some of it starts afresh, the rest
  // stays.
  fgLife.assign(n, 0.0F);
  bgModel.assign(n, {});
  bgImg.assign(n * static_cast<std::size_t>(frmChn), 0);
  nbrIdx.clear();
  nbr4Idx.clear();
  for (int dx = -2; dx <= 2; ++dx) {
    for (int dy = -2; dy <= 2; ++dy) nbrOffset.push_back({dx, dy});
  }
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) findNeighbours(x, y);
  }
  thrConnect = 0.03125F * static_cast<float>(std::max(w, h));
  minObjWPxl = truncated(static_cast<float>(w) * minObjW);
  minObjHPxl = truncated(static_cast<float>(h) * minObjH);
}

void Model::findNeighbours(int x, int y) {
  const auto indexOf = [&](int column, int row) {
    const bool in = column >= 0 && column < szImgX && row >= 0 && row < szImgY;
    return in ? row * szImgX + column : -1;
  };
  std::vector<std::int32_t> around;
  for (std::size_t k = 0; k < static_cast<std::size_t>(numNbr); ++k) {
    around.push_back(indexOf(x + nbrOffset[k].x, y + nbrOffset[k].y));
  }
  for (std::int32_t& entry : around) {
    // Positions outside the frame become copies of random ones inside.
    while (entry == -1) entry = around[static_cast<std::size_t>(std::rand() % numNbr)];
  }
  nbrIdx.push_back(around);
  nbr4Idx.push_back({indexOf(x, y - 1), indexOf(x + 1, y), indexOf(x, y + 1), indexOf(x - 1, y)});
}

}  // namespace plain
