// One frame, in order.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "engine/aligned.h"
#include "engine/c_locale.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"
#include "engine/ranges.h"
#include "engine/rules.h"

namespace {

// Makes `plane` at least `bytes` long. A larger one replaces it only once it is there, so that running out of
// memory loses nothing; a plane that the engine did not make is taken as it is.
bool makeRoom(std::uint8_t*& plane, kAMBLE::Made& made, std::int32_t bytes) {
  const bool tooSmall = plane != nullptr && made.buffer == plane && made.bytes < lm::countOf(bytes);
  if (plane != nullptr && !tooSmall) return true;
  std::uint8_t* fresh = nullptr;
  if (!lm::makeOnce(fresh, bytes)) return false;
  lm::release(plane);
  plane = fresh;
  made = {fresh, lm::countOf(bytes)};
  return true;
}

bool isKnownCount(int channels) { return channels == 1 || channels == 3 || channels == 4; }

bool holds(const std::uint8_t* plane, const kAMBLE::Made& made, std::size_t bytes) {
  return plane == nullptr || made.buffer != plane || made.bytes >= bytes;
}

void copyBytes(std::uint8_t* to, const std::uint8_t* from, std::int32_t bytes) {
  if (bytes > 0) std::memcpy(to, from, static_cast<std::size_t>(bytes));
}

// A mask that is the same is not written again.
void rememberMask(kAMBLE& engine, std::size_t begin, std::size_t end) {
  if (engine.prevFgMask == nullptr || engine.fgMask == nullptr) return;
  if (std::memcmp(engine.prevFgMask + begin, engine.fgMask + begin, end - begin) == 0) return;
  std::memcpy(engine.prevFgMask + begin, engine.fgMask + begin, end - begin);
}

void rememberFrame(kAMBLE& engine, std::size_t begin, std::size_t end) {
  if (engine.prevFrame == nullptr) return;
  const auto channels = static_cast<std::size_t>(engine.frmChn);
  std::memcpy(engine.prevFrame + begin * channels, engine.curFrame + begin * channels,
              (end - begin) * channels);
}

}  // namespace

bool kAMBLE::setTimestamp(const char* timestamp) {
  const std::string text(timestamp);
  const lm::CLocaleScope plainNumbers;
  const std::int64_t milliseconds = std::stoll(text);
  curTimestamp = milliseconds < 0 ? -1 : milliseconds;
  return milliseconds >= 0;
}

bool kAMBLE::hasModel() const { return numPixel >= 1 && bgModel.size() == lm::countOf(numPixel); }

bool kAMBLE::holdsFrames() const {
  const std::size_t bytes = lm::countOf(numPixel) * lm::countOf(frmChn);
  return isKnownCount(frmChn) && holds(curFrame, curFrameMade, bytes) &&
         holds(prevFrame, prevFrameMade, bytes) && holds(bgImg, bgImgMade, bytes);
}

// Differences, classification and update of one frame, then the copies that the next frame compares with,
// strip by strip. The update of a strip reads illumDiff two rows ahead, so the differences run that far
// ahead.
bool kAMBLE::learnStrips(const std::uint8_t* frame, std::int32_t pixels) {
  const int channel = prepareDifferences();
  const bool classify = !skipFrame && canClassify();
  const bool update = classify && canUpdate();
  bool learned = skipFrame || update;
  const std::int32_t bytes = lm::wrapMul(pixels, frmChn);
  learned &= lm::makeOnce(prevFgMask, pixels);
  learned &= makeRoom(prevFrame, prevFrameMade, bytes);

  const std::size_t count = lm::countOf(numPixel);
  const std::size_t width = std::max<std::size_t>(1, lm::countOf(nbrWidth));
  // A channel beyond the frame's reads across pixels, which only the frame as a whole can do.
  const std::size_t rows = channel < frmChn ? stripPixels / width + 1 : count;
  const lm::NeighbourDistances distances(*this, nbrDistances);
  const std::uint8_t* values = frame != nullptr ? frame : curFrame;
  lm::LightCount light;
  std::size_t differed = 0;
  for (std::size_t begin = 0; begin < count;) {
    const std::size_t end = std::min(count, begin + rows * width);
    const std::size_t ahead = std::min(count, end + 2 * width);
    lm::takeRange(*this, frame, channel, differed, ahead);
    differed = ahead;
    if (classify) lm::classifyRange(*this, values, begin, end);
    if (update) lm::updateRange(*this, values, begin, end, distances, light);
    const std::size_t last = std::min(end, lm::countOf(pixels));
    if (begin < last) rememberMask(*this, begin, last);
    if (begin < last && frame == nullptr) rememberFrame(*this, begin, last);
    begin = end;
  }
  if (update) illumRatio = light.ratio();
  return learned;
}

// Whether a frame has the shape of the one before it and will be learned, so that it can be copied meanwhile.
bool kAMBLE::continues(const std::uint8_t* frame, std::int32_t pixels, int channels) const {
  return frmCount != 0 && frame != nullptr && curFrame != nullptr && pixels == numPixel &&
         channels == frmChn && canLearn(pixels);
}

// Whether an engine that has seen frames can learn one of `pixels` pixels.
bool kAMBLE::canLearn(std::int32_t pixels) const {
  return hasModel() && pixels <= numPixel && lm::wrapMul(szImgX, szImgY) == numPixel && holdsFrames();
}

bool kAMBLE::learnBg_ncv(const std::uint8_t* frame, int width, int height, int channels) {
  const std::int32_t pixels = lm::wrapMul(width, height);
  const bool copyLater = continues(frame, pixels, channels);
  if (!copyLater && preprocess_ncv(frame, width, height, channels) == 0) return false;
  const bool sized = frmCount != 0;
  if (sized && !canLearn(pixels)) return false;
  estFrameRate();
  updateLock();

  bool learned = true;
  if (sized) {
    learned = learnStrips(copyLater ? frame : nullptr, pixels);
  } else {
    // Nothing is there on a first frame, unless an earlier attempt ran out of memory half-way.
    releaseModel();
    if (!initialization_ncv(width, height)) return false;
    const std::int32_t bytes = lm::wrapMul(pixels, channels);
    learned = makeRoom(prevFrame, prevFrameMade, bytes);
    if (learned) copyBytes(prevFrame, curFrame, bytes);
  }
  frmCount = lm::wrapAdd(frmCount, 1);
  return learned;
}

int kAMBLE::preprocess_ncv(const std::uint8_t* frame, int width, int height, int channels) {
  const std::int32_t bytes = lm::wrapMul(lm::wrapMul(width, height), channels);
  const bool ready = frame != nullptr && makeRoom(curFrame, curFrameMade, bytes);
  if (ready) copyBytes(curFrame, frame, bytes);
  frmChn = channels;
  // Kept: the count is judged last, so a refused frame has been copied and its count stored all the same.
  if (!isKnownCount(channels)) {
    std::fprintf(stderr, "Error: input frame in a wrong channel number! \n");
    return 0;
  }
  return ready ? channels : 0;
}
