// The detector around the plain engine: its state between calls, and its calls.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/plain/model.h"

namespace plain {

// A configuration document as its reader sees it: scalar members in reading order, "key value" each.
struct Document {
  std::vector<std::string> entries;
  std::vector<RegionText> include, exclude;
};

class Detector {
 public:
  explicit Detector(int level) : level_(level) {}

  bool init(const Document& document);
  int frameProc(const Byte* frame, const std::string& timestamp);  // length of the result
  int genRes(const std::string& timestamp);
  void terminate();
  std::vector<std::string> readScalars(const Document& document);
  int level() const { return level_; }

  std::optional<Model> engine;
  std::int32_t frmW = 0, frmH = 0, frmChn = 0;
  std::string resText;
  std::vector<Byte> fgMaskCopy;
  std::vector<Box> objList;

 private:
  int level_;
};

}  // namespace plain
