// Construction and destruction of the engine, and the exported variables.
#include "base/aligned.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/life.h"

std::int32_t THRESH_SAME_PIXEL_x3 = lm::lifeBand3;
std::int32_t THRESH_SAME_PIXEL_x2 = lm::lifeBand2;
std::int32_t g_seed = 0;

kAMBLE::kAMBLE() = default;

kAMBLE::~kAMBLE() {
  destoryBuffer();
  for (polygon& region : roiInclude) lm::releaseArray(region.mask);
  for (polygon& region : roiExclude) lm::releaseArray(region.mask);
}

lm::EngineState& lm::stateOf(kAMBLE& engine) {
  if (engine.state == nullptr) engine.state = std::make_unique<EngineState>();
  return *engine.state;
}

const lm::EngineState& lm::stateOf(const kAMBLE& engine) {
  static const EngineState initial;
  return engine.state != nullptr ? *engine.state : initial;
}
