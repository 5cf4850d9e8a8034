// All settings and scalar state of an engine at once, so that a test checks what a call changed and that it
// changed nothing else.
#pragma once

#include <map>
#include <string>

#include "engine/kamble.h"

namespace lm::test {

using Settings = std::map<std::string, double>;

inline Settings settingsOf(const kAMBLE& engine) {
  return {
      {"illumChange", engine.illumChange},
      {"ghostSuppression", engine.ghostSuppression},
      {"skipFrame", engine.skipFrame},
      {"frmChn", engine.frmChn},
      {"diffChn", engine.diffChn},
      {"numPixel", engine.numPixel},
      {"szImgX", engine.szImgX},
      {"szImgY", engine.szImgY},
      {"numNbr", engine.numNbr},
      {"thrMatch", engine.thrMatch},
      {"minMatchNum", engine.minMatchNum},
      {"thrIllum", engine.thrIllum},
      {"thrHeuris", engine.thrHeuris},
      {"lifeStaticFrm", engine.lifeStaticFrm},
      {"lifeStatic", engine.lifeStatic},
      {"lockSegStart", engine.lockSegStart},
      {"lockSegEnd", engine.lockSegEnd},
      {"numSegmentLock", engine.numSegmentLock},
      {"numPeriodLock", engine.numPeriodLock},
      {"illumRatio", static_cast<double>(engine.illumRatio)},
      {"minObjW", static_cast<double>(engine.minObjW)},
      {"minObjH", static_cast<double>(engine.minObjH)},
      {"minObjWPxl", engine.minObjWPxl},
      {"minObjHPxl", engine.minObjHPxl},
      {"thrCcPxl", engine.thrCcPxl},
      {"thrCcPxl2", engine.thrCcPxl2},
      {"holdCcPxl", engine.holdCcPxl},
      {"autoSensitivity", engine.autoSensitivity},
      {"thrConnect", static_cast<double>(engine.thrConnect)},
      {"frmRate", engine.frmRate},
      {"frmCount", engine.frmCount},
  };
}

// The settings of a new engine, except for `changes`.
inline Settings defaultsExcept(const Settings& changes) {
  Settings settings = settingsOf(kAMBLE());
  for (const auto& [field, value] : changes) settings.at(field) = value;
  return settings;
}

}  // namespace lm::test
