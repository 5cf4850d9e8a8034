// Construction and destruction of the engine, and the exported variables.
#include "base/aligned.h"
#include "engine/kamble.h"
#include "objects/scratch.h"

std::int32_t THRESH_SAME_PIXEL_x3 = 30;
std::int32_t THRESH_SAME_PIXEL_x2 = 20;
std::int32_t g_seed = 0;

kAMBLE::kAMBLE() = default;

kAMBLE::~kAMBLE() {
  destoryBuffer();
  for (polygon& region : roiInclude) lm::releaseArray(region.mask);
  for (polygon& region : roiExclude) lm::releaseArray(region.mask);
}
