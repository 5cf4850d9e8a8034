// One-pixel engines at the point where an update would or would not write the pixel.
#pragma once

#include "tests/support/engine_fixture.h"

namespace lm::test {

// A background pixel of value 100 over samples of 7, the background image 0.
struct QuietPixel : OnePixel {
  QuietPixel() : OnePixel({100}, {7}) {}
  [[nodiscard]] bool written() const { return bgImg[0] == 100; }
};

// The same, at the point where the refresh writes it, if nothing holds it back: counter at 1, distance above
// the radius, changed against the frame before.
struct RefreshPixel : QuietPixel {
  RefreshPixel() {
    refreshCount[0] = 1;
    minDist[0] = 21;
  }
};

// The same, to be absorbed.
struct AbsorbedPixel : QuietPixel {
  AbsorbedPixel() { absorbMask[0] = 255; }
};

}  // namespace lm::test
