// Seeding the model from the first frame.
#include <cstring>

#include "base/integers.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"
#include "engine/rules.h"

namespace {

// A pixel's bytes as a sample: `channels` of them, then 0. All but the frame's last pixel are read as a whole
// word.
template <int channels>
std::uint32_t sampleOf(const kAMBLE& engine, std::size_t pixel, std::size_t last) {
  const std::uint8_t* value = engine.curFrame + pixel * channels;
  std::uint32_t word = 0;
  if (pixel == last || channels == 4) {
    std::memcpy(&word, value, channels);
    return word;
  }
  if constexpr (channels == 1) return *value;
  std::memcpy(&word, value, sizeof(word));
  return word & 0x00FFFFFFU;
}

// The pixel's own value, then its neighbours' in turn. Reads curFrame up to two rows and two columns away.
template <int channels>
void seedPixel(kAMBLE& engine, std::size_t pixel, std::size_t last) {
  std::uint32_t samples[BgModel::numSamples];
  samples[0] = sampleOf<channels>(engine, pixel, last);
  std::uint32_t cursor = engine.nbrCursor[pixel];
  const int* neighbours = engine.nbrIdx[pixel];
  for (int slot = 1; slot < BgModel::numSamples; ++slot) {
    const int neighbour = neighbours[cursor];
    cursor = lm::nextInRing(cursor, engine.numNbr);
    samples[slot] =
        sampleOf<channels>(engine, neighbour == -1 ? pixel : static_cast<std::size_t>(neighbour), last);
  }
  engine.nbrCursor[pixel] = cursor;
  std::memcpy(engine.bgModel[pixel].samples, samples, sizeof(samples));
}

template <int channels>
void seedAll(kAMBLE& engine, std::size_t count) {
  for (std::size_t pixel = 0; pixel < count; ++pixel) seedPixel<channels>(engine, pixel, count - 1);
  if (count > 0) std::memcpy(engine.bgImg, engine.curFrame, count * channels);
}

}  // namespace

bool kAMBLE::initModel_ncv() {
  const std::size_t count = lm::countOf(numPixel);
  if (curFrame == nullptr || bgImg == nullptr || nbrCursor == nullptr || bgModel.size() != count ||
      nbrIdx.size() != count || (count > 0 && nbrIdx.front() == nullptr) || !lm::holdsFrames(*this)) {
    return false;
  }
  if (frmChn == 1) seedAll<1>(*this, count);
  if (frmChn == 3) seedAll<3>(*this, count);
  if (frmChn == 4) seedAll<4>(*this, count);
  return true;
}
