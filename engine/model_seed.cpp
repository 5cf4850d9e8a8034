// Seeding the model from the first frame.
#include <cstring>

#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/neighbours.h"

namespace {

// The pixel's own value, then its neighbours' in turn.
void seedPixel(kAMBLE& engine, std::size_t pixel) {
  const auto bytes = static_cast<std::size_t>(engine.frmChn);
  const std::uint8_t* own = engine.curFrame + pixel * bytes;
  BgModel& model = engine.bgModel[pixel];
  std::memcpy(model.samples[0], own, bytes);
  for (int slot = 1; slot < BgModel::numSamples; ++slot) {
    std::memcpy(model.samples[slot], engine.curFrame + lm::takeNeighbour(engine, pixel) * bytes, bytes);
  }
  std::memcpy(engine.bgImg + pixel * bytes, own, bytes);
}

}  // namespace

bool kAMBLE::initModel_ncv() {
  const std::size_t count = lm::countOf(numPixel);
  if (curFrame == nullptr || bgImg == nullptr || nbrCursor == nullptr || bgModel.size() != count ||
      nbrIdx.size() != count || (count > 0 && nbrIdx.front() == nullptr) || !lm::holdsFrames(*this)) {
    return false;
  }
  for (std::size_t pixel = 0; pixel < count; ++pixel) seedPixel(*this, pixel);
  return true;
}
