// One frame, in order.
#include <cstdio>
#include <cstring>
#include <string>

#include "engine/aligned.h"
#include "engine/c_locale.h"
#include "engine/kamble.h"
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

bool holds(const std::uint8_t* plane, const kAMBLE::Made& made, std::size_t bytes) {
  return plane == nullptr || made.buffer != plane || made.bytes >= bytes;
}

void copyBytes(std::uint8_t* to, const std::uint8_t* from, std::int32_t bytes) {
  if (bytes > 0) std::memcpy(to, from, static_cast<std::size_t>(bytes));
}

}  // namespace

bool kAMBLE::setTimestamp(const char* timestamp) {
  const std::string text(timestamp);
  const lm::CLocaleScope plainNumbers;
  const std::int64_t milliseconds = std::stoll(text);
  curTimestamp = milliseconds < 0 ? -1 : milliseconds;
  return milliseconds >= 0;
}

bool kAMBLE::holdsFrames() const {
  const std::size_t bytes = lm::countOf(numPixel) * lm::countOf(frmChn);
  return holds(curFrame, curFrameMade, bytes) && holds(prevFrame, prevFrameMade, bytes) &&
         holds(bgImg, bgImgMade, bytes);
}

bool kAMBLE::learnBg_ncv(const std::uint8_t* frame, int width, int height, int channels) {
  if (preprocess_ncv(frame, width, height, channels) == 0) return false;
  const std::int32_t pixels = lm::wrapMul(width, height);
  const bool sized = frmCount != 0;
  if (sized && (pixels > numPixel || lm::wrapMul(szImgX, szImgY) != numPixel || !holdsFrames())) return false;
  estFrameRate();
  updateLock();

  bool learned = true;
  if (!sized) {
    // Nothing is there on a first frame, unless an earlier attempt ran out of memory half-way.
    releaseModel();
    if (!initialization_ncv(width, height)) return false;
  } else {
    heuristic_ncv();
    if (!skipFrame) learned = recogFg_ncv() && updateModel_ncv();
    learned &= lm::makeOnce(prevFgMask, pixels);
    if (prevFgMask != nullptr && fgMask != nullptr) copyBytes(prevFgMask, fgMask, pixels);
  }

  const std::int32_t bytes = lm::wrapMul(pixels, channels);
  learned &= makeRoom(prevFrame, prevFrameMade, bytes);
  if (prevFrame != nullptr) copyBytes(prevFrame, curFrame, bytes);
  frmCount = lm::wrapAdd(frmCount, 1);
  return learned;
}

int kAMBLE::preprocess_ncv(const std::uint8_t* frame, int width, int height, int channels) {
  const std::int32_t bytes = lm::wrapMul(lm::wrapMul(width, height), channels);
  const bool ready = frame != nullptr && makeRoom(curFrame, curFrameMade, bytes);
  if (ready) copyBytes(curFrame, frame, bytes);
  frmChn = channels;
  // Kept: the count is judged last, so a refused frame has been copied and its count stored all the same.
  if (channels != 1 && channels != 3 && channels != 4) {
    std::fprintf(stderr, "Error: input frame in a wrong channel number! \n");
    return 0;
  }
  return ready ? channels : 0;
}
