// One frame, in order.
#include <cstdio>
#include <cstring>
#include <string>

#include "base/aligned.h"
#include "base/c_locale.h"
#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"

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

bool isKnownCount(int channels) { return channels == 1 || channels == 3 || channels == 4; }

// Whether an engine that has seen frames can learn one of `pixels` pixels.
bool canLearn(const kAMBLE& engine, std::int32_t pixels) {
  return lm::hasModel(engine) && pixels <= engine.numPixel &&
         lm::wrapMul(engine.szImgX, engine.szImgY) == engine.numPixel && lm::holdsFrames(engine);
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
  if (preprocess_ncv(frame, width, height, channels) == 0) return false;
  const std::int32_t pixels = lm::wrapMul(width, height);
  if (frmCount != 0 && !canLearn(*this, pixels)) return false;
  estFrameRate();
  updateLock();

  bool learned = true;
  if (frmCount == 0) {
    // Nothing exists on a first frame, unless an earlier attempt failed half-way.
    lm::releaseModel(*this);
    if (!initialization_ncv(width, height)) return false;
  } else {
    heuristic_ncv();
    if (!skipFrame) learned = recogFg_ncv() && updateModel_ncv();
    learned &= lm::makeOnce(prevFgMask, numPixel);
    if (prevFgMask != nullptr && fgMask != nullptr) copyBytes(prevFgMask, fgMask, pixels);
  }

  const std::int32_t bytes = lm::wrapMul(pixels, channels);
  const bool kept = makeRoom(prevFrame, lm::stateOf(*this).prevFrame, bytes);
  if (kept) copyBytes(prevFrame, curFrame, bytes);
  frmCount = lm::wrapAdd(frmCount, 1);
  return learned && kept;
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
