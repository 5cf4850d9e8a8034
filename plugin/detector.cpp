#include "plugin/detector.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "base/aligned.h"
#include "base/integers.h"
#include "config/document.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"

namespace {

// The frame size of a detector. Changes go back to the detector, also when an exception ends the call.
class SizeOf : public lm::FrameSize {
 public:
  explicit SizeOf(lightMotion& detector) : detector_(detector) {
    frmW = detector.frmW;
    frmH = detector.frmH;
    frmChn = detector.frmChn;
  }
  ~SizeOf() {
    detector_.frmW = frmW;
    detector_.frmH = frmH;
    detector_.frmChn = frmChn;
  }
  SizeOf(const SizeOf&) = delete;
  SizeOf& operator=(const SizeOf&) = delete;

 private:
  lightMotion& detector_;
};

}  // namespace

lightMotion::lightMotion() = default;

lightMotion::~lightMotion() { terminate(); }

bool lightMotion::init(const char* config) {
  if (engine == nullptr) engine = new kAMBLE;
  SizeOf size(*this);
  lm::Configuration configuration;
  const bool accepted = lm::readConfiguration(config, size, configuration);
  std::fputs(configuration.messages.c_str(), stdout);
  if (accepted) engine->setParam(configuration.parameters, configuration.include, configuration.exclude);
  return accepted;
}

std::vector<std::string> lightMotion::myjsonReader(std::string config) {
  SizeOf size(*this);
  std::vector<std::string> parameters;
  if (!lm::readScalars(config, size, parameters)) std::fputs(lm::notJsonMessage, stdout);
  return parameters;
}

bool lightMotion::jsonReaderRoi(std::string config, std::vector<polygon>& include,
                                std::vector<polygon>& exclude) {
  return lm::readRegions(config, {frmW, frmH, frmChn}, include, exclude);
}

int lightMotion::frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  resText.clear();
  *resultLen = 0;
  if (engine == nullptr) return 1;
  engine->setTimestamp(timestamp);
  engine->learnBg_ncv(frame, frmW, frmH, frmChn);

  const std::int32_t pixels = lm::wrapMul(frmW, frmH);
  const bool copyMade = lm::makeOnce(fgMaskCopy, pixels);
  objList.clear();
  // Without a mask (no frame was accepted yet, or an allocation failed) nothing moved.
  if (!copyMade || engine->fgMask == nullptr || engine->numPixel != pixels || !lm::hasModel(*engine)) {
    return 1;
  }
  std::memcpy(fgMaskCopy, engine->fgMask, lm::countOf(pixels));
  objList = engine->genFgObj_ncv(fgMaskCopy);
  if (!objList.empty()) *resultLen = genRes(timestamp);
  return 1;
}

int lightMotion::getRes(char* out) {
  std::strcpy(out, resText.c_str());
  return 1;
}

void lightMotion::terminate() {
  delete engine;
  engine = nullptr;
  lm::release(fgMaskCopy);
}
