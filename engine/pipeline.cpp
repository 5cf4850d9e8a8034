// One frame, in order.
#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/aligned.h"
#include "base/c_locale.h"
#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"
#include "engine/ranges.h"

namespace {

// Makes `plane` at least `bytes` long. A larger one replaces it only after its allocation, so that a failure
// loses nothing; a plane that the engine did not make is used as it is.
bool makeRoom(std::uint8_t*& plane, lm::Made& made, std::int32_t bytes) {
  if (plane != nullptr && !made.isTooSmall(plane, lm::countOf(bytes))) return true;
  std::uint8_t* fresh = nullptr;
  if (!lm::makeOnce(fresh, bytes)) return false;
  lm::release(plane);
  plane = fresh;
  made = {fresh, lm::countOf(bytes)};
  return true;
}

void copyBytes(std::uint8_t* to, const std::uint8_t* from, std::int32_t bytes) {
  if (bytes > 0) std::memcpy(to, from, static_cast<std::size_t>(bytes));
}

// An unchanged mask is not written again.
void rememberMask(kAMBLE& engine, std::size_t begin, std::size_t end) {
  if (engine.prevFgMask == nullptr || engine.fgMask == nullptr) return;
  assert(begin <= end);
  if (std::memcmp(engine.prevFgMask + begin, engine.fgMask + begin, end - begin) == 0) return;
  std::memcpy(engine.prevFgMask + begin, engine.fgMask + begin, end - begin);
}

void rememberFrame(kAMBLE& engine, std::size_t begin, std::size_t end) {
  if (engine.prevFrame == nullptr) return;
  const auto channels = static_cast<std::size_t>(engine.frmChn);
  std::memcpy(engine.prevFrame + begin * channels, engine.curFrame + begin * channels,
              (end - begin) * channels);
}

bool isKnownCount(int channels) { return channels == 1 || channels == 3 || channels == 4; }

// Differences, classification and update of one frame, then the copies that the next frame compares with,
// strip by strip; `frame` is null when it is in curFrame already. The update of a strip reads illumDiff two
// rows ahead, so the differences run that far ahead.
bool learnStrips(kAMBLE& engine, const std::uint8_t* frame, std::int32_t pixels) {
  lm::EngineState& state = lm::stateOf(engine);
  const int channel = lm::prepareDifferences(engine);
  const bool classify = !engine.skipFrame && lm::canClassify(engine);
  const bool update = classify && lm::canUpdate(engine);
  bool learned = engine.skipFrame || update;
  const std::int32_t bytes = lm::wrapMul(pixels, engine.frmChn);
  learned &= lm::makeOnce(engine.prevFgMask, pixels);
  learned &= makeRoom(engine.prevFrame, state.prevFrame, bytes);

  const std::size_t count = lm::countOf(engine.numPixel);
  const std::size_t width = std::max<std::size_t>(1, lm::countOf(state.nbrWidth));
  // A channel beyond the frame's reads across pixels, so the whole frame is one strip.
  const std::size_t rows = channel < engine.frmChn ? state.stripPixels / width + 1 : count;
  const lm::NeighbourDistances distances(engine, state.nbrDistances);
  const std::uint8_t* values = frame != nullptr ? frame : engine.curFrame;
  lm::LightCount light;
  std::size_t differed = 0;
  for (std::size_t begin = 0; begin < count;) {
    const std::size_t end = std::min(count, begin + rows * width);
    const std::size_t ahead = std::min(count, end + lm::neighbourRadius * width);
    lm::takeRange(engine, frame, channel, differed, ahead);
    differed = ahead;
    if (classify) lm::classifyRange(engine, values, begin, end);
    if (update) lm::updateRange(engine, values, begin, end, distances, light);
    const std::size_t last = std::min(end, lm::countOf(pixels));
    if (begin < last) rememberMask(engine, begin, last);
    if (begin < last && frame == nullptr) rememberFrame(engine, begin, last);
    begin = end;
  }
  if (update) engine.illumRatio = light.ratio();
  return learned;
}

// Whether an engine that has seen frames can learn one of `pixels` pixels.
bool canLearn(const kAMBLE& engine, std::int32_t pixels) {
  return lm::hasModel(engine) && pixels <= engine.numPixel &&
         lm::wrapMul(engine.szImgX, engine.szImgY) == engine.numPixel && lm::holdsFrames(engine);
}

// Whether a frame has the shape of the previous one and will be learned, so that it can be copied meanwhile.
bool continues(const kAMBLE& engine, const std::uint8_t* frame, std::int32_t pixels, int channels) {
  return engine.frmCount != 0 && frame != nullptr && engine.curFrame != nullptr &&
         pixels == engine.numPixel && channels == engine.frmChn && canLearn(engine, pixels);
}

}  // namespace

bool kAMBLE::setTimestamp(const char* timestamp) {
  const std::string text(timestamp);
  const lm::CLocaleScope plainNumbers;
  const std::int64_t milliseconds = std::stoll(text);
  curTimestamp = milliseconds < 0 ? -1 : milliseconds;
  return milliseconds >= 0;
}

bool lm::hasModel(const kAMBLE& engine) {
  return engine.numPixel >= 1 && engine.bgModel.size() == countOf(engine.numPixel);
}

bool lm::holdsFrames(const kAMBLE& engine) {
  const std::size_t bytes = countOf(engine.numPixel) * countOf(engine.frmChn);
  const EngineState& state = stateOf(engine);
  return isKnownCount(engine.frmChn) && !state.curFrame.isTooSmall(engine.curFrame, bytes) &&
         !state.prevFrame.isTooSmall(engine.prevFrame, bytes) && !state.bgImg.isTooSmall(engine.bgImg, bytes);
}

bool kAMBLE::learnBg_ncv(const std::uint8_t* frame, int width, int height, int channels) {
  const std::int32_t pixels = lm::wrapMul(width, height);
  const bool copyLater = continues(*this, frame, pixels, channels);
  if (!copyLater && preprocess_ncv(frame, width, height, channels) == 0) return false;
  const bool sized = frmCount != 0;
  if (sized && !canLearn(*this, pixels)) return false;
  estFrameRate();
  updateLock();

  bool learned = true;
  if (sized) {
    learned = learnStrips(*this, copyLater ? frame : nullptr, pixels);
  } else {
    // Nothing exists on a first frame, unless an earlier attempt failed half-way.
    lm::releaseModel(*this);
    if (!initialization_ncv(width, height)) return false;
    const std::int32_t bytes = lm::wrapMul(pixels, channels);
    learned = makeRoom(prevFrame, lm::stateOf(*this).prevFrame, bytes);
    if (learned) copyBytes(prevFrame, curFrame, bytes);
  }
  frmCount = lm::wrapAdd(frmCount, 1);
  return learned;
}

int kAMBLE::preprocess_ncv(const std::uint8_t* frame, int width, int height, int channels) {
  const std::int32_t bytes = lm::wrapMul(lm::wrapMul(width, height), channels);
  const bool ready = frame != nullptr && makeRoom(curFrame, lm::stateOf(*this).curFrame, bytes);
  if (ready) copyBytes(curFrame, frame, bytes);
  frmChn = channels;
  // Kept: the count is checked last, so a refused frame has been copied and its count stored.
  if (!isKnownCount(channels)) {
    std::fprintf(stderr, "Error: input frame in a wrong channel number! \n");
    return 0;
  }
  return ready ? channels : 0;
}
