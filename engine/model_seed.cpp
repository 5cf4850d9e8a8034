// Seeding the model from the first frame.
#include <cstring>

#include "engine/kamble.h"
#include "engine/rules.h"

namespace {

// A neighbour of the pixel, the next in turn.
std::size_t takeNeighbour(kAMBLE& engine, std::size_t pixel) {
  const std::uint32_t entry = engine.nbrCursor[pixel];
  engine.nbrCursor[pixel] = lm::nextInRing(entry, engine.numNbr);
  const int neighbour = engine.nbrIdx[pixel][entry];
  return neighbour == -1 ? pixel : static_cast<std::size_t>(neighbour);
}

// Reads curFrame up to two rows and two columns away from the range.
void seedRange(kAMBLE& engine, std::size_t begin, std::size_t end) {
  const auto bytes = static_cast<std::size_t>(engine.frmChn);
  for (std::size_t pixel = begin; pixel < end; ++pixel) {
    const std::uint8_t* own = engine.curFrame + pixel * bytes;
    BgModel& model = engine.bgModel[pixel];
    std::memcpy(model.samples[0], own, bytes);
    for (int slot = 1; slot < BgModel::numSamples; ++slot) {
      std::memcpy(model.samples[slot], engine.curFrame + takeNeighbour(engine, pixel) * bytes, bytes);
    }
    std::memcpy(engine.bgImg + pixel * bytes, own, bytes);
  }
}

}  // namespace

bool kAMBLE::initModel_ncv() {
  const std::size_t count = lm::countOf(numPixel);
  if (curFrame == nullptr || bgImg == nullptr || nbrCursor == nullptr || bgModel.size() < count ||
      nbrIdx.size() < count || (count > 0 && nbrIdx.front() == nullptr)) {
    return false;
  }
  seedRange(*this, 0, count);
  return true;
}
