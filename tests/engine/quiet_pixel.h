// One-pixel engines at the point where an update would or would not write the pixel.
#pragma once

#include "tests/support/engine_fixture.h"

namespace lm::test {

// A background pixel of value 100 over samples of 7, the background image 0.
struct QuietPixel : OnePixel {
  QuietPixel() : OnePixel({100}, {7}) {}
  [[nodiscard]] bool written() const { return bgImg[0] == 100; }
};

// The same, written by the next refresh unless something prevents it: counter at 1, distance above the
// radius, not background in the previous mask.
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
