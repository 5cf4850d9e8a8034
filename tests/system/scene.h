// Synthetic video for the comparison: every byte is a pure function of the scene, the position and the frame
// number.
#pragma once

#include <cstdint>
#include <vector>

namespace scene {

inline constexpr int forever = 1 << 30;

struct Area {
  int x, y, w, h;
  bool holds(int px, int py) const { return px >= x && px < x + w && py >= y && py < y + h; }
};

// A textured rectangle. It moves by (dx, dy) per frame for the first `moves` frames, then stops.
struct Thing {
  Area area;
  int from = 0, until = forever;
  int shade = 200;
  int dx = 0, dy = 0, moves = forever;
  int flicker = 0;  // added to every second frame
};

// A lighting change, added to the pixels of an area.
struct Light {
  Area area;
  int from = 0, until = forever;
  int amount = 0;
  int every = 1;  // on in the first of each group of this many frames
};

struct Scene {
  int width, height, channels = 3;
  std::uint32_t seed = 1;
  int base = 60, texture = 12, noise = 0;
  std::vector<Light> lights = {};
  std::vector<Thing> things = {};

  std::vector<std::uint8_t> draw(int frame) const;
};

// A well-mixed number in [0, below) from four coordinates.
int scattered(std::uint32_t seed, int a, int b, int c, int below);

}  // namespace scene
