#include "tests/support/engine_fixture.h"

#include <algorithm>

namespace lm::test {

SizedEngine::SizedEngine(int width, int height, int channels) {
  szImgX = width;
  szImgY = height;
  numPixel = width * height;
  frmChn = channels;
  initBuffer_ncv();
  std::fill_n(roiMask, pixels(), std::uint8_t{1});
}

void SizedEngine::addFrames() {
  const std::size_t bytes = pixels() * static_cast<std::size_t>(frmChn);
  curFrame = makePlane<std::uint8_t>(bytes);
  prevFrame = makePlane<std::uint8_t>(bytes);
  rdDiff = makePlane<std::uint8_t>(pixels());
  illumDiff = makePlane<std::uint8_t>(bytes);
  prevFgMask = makePlane<std::uint8_t>(pixels(), 1);
}

OnePixel::OnePixel(const Bytes& pixel, const Bytes& sample)
    : SizedEngine(1, 1, static_cast<int>(pixel.size())) {
  addFrames();
  setPixel(pixel);
  for (int i = 0; i < BgModel::numSamples; ++i) {
    setSlot(i, sample);
  }
}

void OnePixel::setPixel(const Bytes& bytes) { std::copy(bytes.begin(), bytes.end(), curFrame); }

void OnePixel::setSlot(int slot, const Bytes& bytes) {
  std::copy(bytes.begin(), bytes.end(), bgModel[0].samples[slot]);
}

Bytes OnePixel::slot(int index) const {
  const std::uint8_t* bytes = bgModel[0].samples[index];
  return {bytes, bytes + frmChn};
}

}  // namespace lm::test
