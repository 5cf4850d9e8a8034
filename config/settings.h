// The settings of the parameter list without an engine: fields and defaults of kAMBLE.
#pragma once

#include <cstdint>

namespace lm {

struct Settings {
  std::int32_t szImgX = 0;
  std::int32_t szImgY = 0;
  std::int32_t frmChn = 0;
  std::int32_t thrMatch = 20;
  std::int32_t thrHeuris = 10;
  std::int32_t thrIllum = 5;
  float minObjW = 0.05F;
  float minObjH = 0.05F;
  std::int32_t lifeStatic = 3;
  std::int32_t lifeStaticFrm = 160;
  double frmRate = 30.0;
  bool autoSensitivity = false;
  bool ghostSuppression = true;
  bool illumChange = true;
  std::int32_t minMatchNum = 2;
  std::int32_t numSegmentLock = 4;
  std::int32_t numPeriodLock = 600;
};

inline void enableAutoSensitivity(Settings& settings) { settings.autoSensitivity = true; }

}  // namespace lm
