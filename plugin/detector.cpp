#include "plugin/detector.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "base/aligned.h"
#include "base/integers.h"
#include "engine/kamble.h"

lightMotion::lightMotion() = default;

lightMotion::~lightMotion() { terminate(); }

bool lightMotion::init(const char* config) {
  if (engine == nullptr) engine = new kAMBLE;
  std::vector<polygon> include;
  std::vector<polygon> exclude;
  std::vector<std::string> parameters = myjsonReader(config);
  if (frmChn < 1 || frmW < 1 || frmH < 1) {
    std::printf("Error: invalid parameter[frmChn:%d,frmW:%d,frmH:%d] \n", frmChn, frmW, frmH);
    return false;
  }
  jsonReaderRoi(config, include, exclude);
  if (include.empty()) {
    std::printf("Error: region of interest is empty! \n");
    return false;
  }
  engine->setParam(parameters, include, exclude);
  return true;
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
  // Without a mask (no frame was accepted yet, or memory is lacking) nothing moved.
  if (!copyMade || engine->fgMask == nullptr || engine->numPixel != pixels) return 1;
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
