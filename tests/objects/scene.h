// Scenes for object extraction: an engine, and a mask painted with blocks whose boxes are known.
#pragma once

#include <cstdlib>
#include <vector>

#include "objects/box.h"
#include "tests/objects/boxes.h"
#include "tests/support/engine_fixture.h"

namespace lm::test {

struct Rect {
  int x, y, width, height;
};

// Extraction peels three layers off every block. `paint` adds them beforehand, so that `core` is what
// remains; its box then has one pixel of margin: (x - 1, y - 1, width + 2, height + 2).
struct Scene : SizedEngine {
  Scene(int width, int height) : SizedEngine(width, height, 1) {
    put(mask, Bytes(pixels()));
    thrCcPxl = thrCcPxl2 = 1;
    minObjWPxl = minObjHPxl = 0;
    thrConnect = -1.0F;  // the gap pass joins nothing
  }
  ~Scene() { std::free(mask); }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  void fill(const Rect& area, std::uint8_t value = 255) {
    for (int y = area.y; y < area.y + area.height; ++y) {
      for (int x = area.x; x < area.x + area.width; ++x) {
        mask[y * szImgX + x] = value;
      }
    }
  }
  void paint(const Rect& core) { fill({core.x - 3, core.y - 3, core.width + 6, core.height + 6}); }
  void paint(const std::vector<Rect>& cores) {
    for (const Rect& core : cores) {
      paint(core);
    }
  }

  // The boxes in pixels. Exact if the frame sides are powers of two.
  Boxes extract() {
    Boxes boxes = genFgObj_ncv(mask);
    for (boxRect& found : boxes) {
      found.x *= static_cast<float>(szImgX);
      found.width *= static_cast<float>(szImgX);
      found.y *= static_cast<float>(szImgY);
      found.height *= static_cast<float>(szImgY);
    }
    return boxes;
  }

  std::uint8_t* mask = nullptr;
};

}  // namespace lm::test
