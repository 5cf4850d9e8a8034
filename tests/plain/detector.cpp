#include "tests/plain/detector.h"

#include <algorithm>

namespace plain {

std::vector<std::string> Detector::readScalars(const Document& document) {
  for (const std::string& entry : document.entries) {
    const std::string key = entry.substr(0, entry.find(' '));
    const auto value = [&] { return std::stoi(entry.substr(key.size() + 1)); };
    if (key == "frmW") frmW = value();
    if (key == "frmH") frmH = value();
    if (key == "frmChn") frmChn = value();
  }
  return document.entries;
}

bool Detector::init(const Document& document) {
  if (!engine) engine.emplace(level_);
  const std::vector<std::string> entries = readScalars(document);
  if (frmChn < 1 || frmW < 1 || frmH < 1 || document.include.empty()) return false;
  engine->setParam(entries, engine->regionsInPixels(document.include, frmW, frmH, 3),
                   engine->regionsInPixels(document.exclude, frmW, frmH, 0));
  return true;
}

int Detector::frameProc(const Byte* frame, const std::string& timestamp) {
  resText.clear();
  if (!engine) return 0;
  engine->setTimestamp(timestamp);
  engine->learnBg(frame, frmW, frmH, frmChn);
  const std::size_t pixels = static_cast<std::size_t>(frmW * frmH);
  if (fgMaskCopy.empty()) fgMaskCopy.resize(pixels);
  objList.clear();
  // No motion before a frame of this size was learned.
  if (engine->fgMask.empty() || engine->numPixel != frmW * frmH || engine->bgModel.size() != pixels) return 0;
  std::copy_n(engine->fgMask.begin(), pixels, fgMaskCopy.begin());
  objList = engine->objects(fgMaskCopy);
  return objList.empty() ? 0 : genRes(timestamp);
}

int Detector::genRes(const std::string& timestamp) {
  resText = Model(level_).resultText(timestamp, objList);
  return static_cast<int>(resText.size());
}

void Detector::terminate() {
  engine.reset();
  fgMaskCopy.clear();
}

}  // namespace plain
