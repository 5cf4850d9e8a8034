// One frame: its steps and its time.
#include <algorithm>
#include <cstdlib>

#include "tests/plain/model.h"

namespace plain {

std::string Model::frameProc(const Byte* frame, int w, int h, int channels, const std::string& timestamp) {
  boxes.clear();
  setTimestamp(timestamp);
  learnBg(frame, w, h, channels);
  if (frmCount == 0 && fgMask.empty()) return "";  // refused before any frame was accepted
  std::vector<Byte> mask = fgMask;
  boxes = objects(mask);
  return boxes.empty() ? (mark(Branch::resultEmpty), "") : resultText(timestamp, boxes);
}

bool Model::setTimestamp(const std::string& text) {
  const long long value = std::stoll(text);
  markIf(value < 0, Branch::timeNegative);
  curTimestamp = value < 0 ? -1 : value;
  return value >= 0;
}

// Frames may be smaller than the first, and have fewer channels.
bool Model::canLearn(int pixels) const {
  return isSized() && pixels <= numPixel && wrapMul(szImgX, szImgY) == numPixel && holdsFrames();
}

bool Model::learnBg(const Byte* frame, int w, int h, int channels) {
  if (preprocess(frame, w, h, channels) == 0) return false;
  if (frmCount != 0 && !canLearn(w * h)) return false;
  estFrameRate();
  updateLock();
  bool learned = true;
  if (frmCount == 0) {
    mark(Branch::frameSeeds);
    if (!initialization(w, h)) return false;
  } else {
    mark(Branch::frameClassified);
    difference();
    learned = classify() && update();
    std::copy_n(fgMask.begin(), w * h, prevFgMask.begin());
  }
  const std::size_t bytes = static_cast<std::size_t>(w * h * channels);
  if (prevFrame.size() < bytes) prevFrame.assign(bytes, 0);
  std::copy_n(curFrame.begin(), bytes, prevFrame.begin());
  frmCount = wrapAdd(frmCount, 1);
  return learned;
}

int Model::preprocess(const Byte* frame, int w, int h, int channels) {
  frmChn = channels;  // stored before it is checked
  if (frame != nullptr) {
    const std::size_t bytes = static_cast<std::size_t>(w * h * channels);
    markIf(!curFrame.empty() && curFrame.size() < bytes, Branch::currentFrameGrows);
    curFrame.resize(std::max(curFrame.size(), bytes));
    std::copy_n(frame, bytes, curFrame.begin());
  }
  if (channels == 1 || channels == 3 || channels == 4) return frame != nullptr ? channels : 0;
  mark(frmCount == 0 ? Branch::channelsRefusedFirst : Branch::channelsRefused);
  return 0;
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
  elapsedUs =
      (std::int64_t{curTime.tv_sec} - prevTime.tv_sec) * usPerSec + curTime.tv_usec - prevTime.tv_usec;
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

int Model::updateLock() {
  if (numPeriodLock < 1) {
    mark(Branch::lockOff);
    return lockSegEnd;
  }
  if (frmCount % numPeriodLock != 0) {
    mark(Branch::lockNotDue);
    return lockSegEnd;
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
  return lockSegEnd;
}

}  // namespace plain
