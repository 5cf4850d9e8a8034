#include "tests/system/scene.h"

#include <algorithm>

namespace scene {

int scattered(std::uint32_t seed, int a, int b, int c, int below) {
  if (below <= 0) return 0;
  std::uint32_t h = seed * 0x9E3779B1U;
  for (const int part : {a, b, c}) {
    h = (h ^ static_cast<std::uint32_t>(part)) * 0x85EBCA6BU;
    h ^= h >> 15;
    h *= 0xC2B2AE35U;
    h ^= h >> 13;
  }
  return static_cast<int>(h % static_cast<std::uint32_t>(below));
}

namespace {

Area placeOf(const Thing& thing, int frame) {
  const int steps = std::min(frame - thing.from, thing.moves);
  return {thing.area.x + thing.dx * steps, thing.area.y + thing.dy * steps, thing.area.w, thing.area.h};
}

bool shows(int from, int until, int frame) { return frame >= from && frame < until; }

int shadeAt(const Scene& scene, int x, int y, int c, int frame) {
  int shade = scene.base + scattered(scene.seed, x, y, c, scene.texture);
  for (const Light& light : scene.lights) {
    const bool on = shows(light.from, light.until, frame) && (frame - light.from) % light.every == 0;
    if (on && light.area.holds(x, y)) shade += light.amount;
  }
  for (const Thing& thing : scene.things) {
    if (!shows(thing.from, thing.until, frame)) continue;
    const Area at = placeOf(thing, frame);
    if (!at.holds(x, y)) continue;
    shade = thing.shade + scattered(scene.seed + 1, x - at.x, y - at.y, c, scene.texture);
    if (frame % 2 != 0) shade += thing.flicker;
  }
  const int place = (y * scene.width + x) * 4 + c;
  return shade + scattered(scene.seed + 2, place, frame, 0, 2 * scene.noise + 1) - scene.noise;
}

}  // namespace

std::vector<std::uint8_t> Scene::draw(int frame) const {
  std::vector<std::uint8_t> pixels;
  pixels.reserve(static_cast<std::size_t>(width * height * channels));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < channels; ++c) {
        pixels.push_back(static_cast<std::uint8_t>(std::clamp(shadeAt(*this, x, y, c, frame), 0, 255)));
      }
    }
  }
  return pixels;
}

}  // namespace scene
