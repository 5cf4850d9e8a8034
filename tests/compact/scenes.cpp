#include "tests/compact/scenes.h"

#include <algorithm>
#include <cmath>
#include <utility>

using lm::compact::Shape;

Kind anyKind(Dice& dice) {
  return dice.oneOf(
      {Kind::passing, Kind::stopping, Kind::blinking, Kind::brightening, Kind::dimming, Kind::arbitrary});
}

std::vector<std::uint8_t> draw(const Scene& scene, int frame, Dice& dice) {
  const auto& [width, height, channels] = scene.shape;
  const bool stands = scene.kind == Kind::stopping;
  const bool present = !stands || (frame >= 5 && frame <= 60);
  const int left = stands ? width / 3 : frame * 3 % (width + 20) - 10;
  const int top = stands ? height / 3 : frame * 2 % (height + 10) - 5;
  int light = 0;
  if (scene.kind == Kind::blinking && frame % 4 == 0) light = 30;
  if (scene.kind == Kind::brightening) light = frame / 2;
  if (scene.kind == Kind::dimming) light = -frame / 3;
  std::vector<std::uint8_t> pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool inside = present && x >= left && x < left + std::max(8, width / 4) && y >= top &&
                          y < top + std::max(8, height / 4);
      for (int channel = 0; channel < channels; ++channel) {
        const double value = inside ? 220 - 30 * channel : 60 + (x * 7 + y * 13) % 90 + 10 * channel + light;
        const double noisy =
            scene.kind == Kind::arbitrary ? dice.below(256) : value + dice.normal(scene.noise);
        pixels.push_back(static_cast<std::uint8_t>(std::lround(std::clamp(noisy, 0.0, 255.0))));
      }
    }
  }
  return pixels;
}

polygon polygonOf(std::vector<pnt> points) {
  polygon region;
  region.name = "region";
  region.points = std::move(points);
  return region;
}

polygon wholeOf(const Shape& shape) {
  return polygonOf({{-1, -1}, {shape.width, -1}, {shape.width, shape.height}, {-1, shape.height}});
}

polygon anyPolygon(const Shape& shape, Dice& dice) {
  std::vector<pnt> points;
  for (int corners = dice.between(3, 6); corners > 0; --corners) {
    points.push_back({dice.between(-1, shape.width), dice.between(-1, shape.height)});
  }
  return polygonOf(points);
}

std::vector<std::string> sizeEntries(const Shape& shape) {
  return {"frmW " + std::to_string(shape.width), "frmH " + std::to_string(shape.height),
          "frmChn " + std::to_string(shape.channels)};
}

namespace {

// Adds an entry of `key` in so many percent of the calls.
struct Entries {
  Dice& dice;
  std::vector<std::string> list = {};
  void maybe(int percent, const char* key, std::initializer_list<const char*> values) {
    if (dice.chance(percent)) list.push_back(std::string(key) + " " + dice.oneOf(values));
  }
};

}  // namespace

std::vector<std::string> anyDocumentEntries(Dice& dice) {
  Entries entries{dice};
  entries.maybe(80, "sensitivity", {"1", "2", "3", "4", "5", "-1"});
  entries.maybe(50, "lcAdap", {"1", "2", "3", "4", "5"});
  entries.maybe(50, "lifeStatic", {"0", "-1", "-2"});
  entries.maybe(50, "minBoxW", {"0.01", "0.2"});
  return entries.list;
}

std::vector<std::string> anyFurtherEntries(Dice& dice) {
  Entries entries{dice};
  entries.maybe(20, "MIN_MATCH_NUM", {"1", "3", "20"});
  entries.maybe(20, "MIN_MATCH_DIST", {"1", "60", "254"});
  entries.maybe(20, "THR_DIFF_HEURISTIC", {"0", "3", "255", "1000"});
  entries.maybe(20, "NUM_SEGMENT_LOCK", {"1", "7", "20"});
  entries.maybe(20, "NUM_PERIOD_LOCK", {"1", "5"});
  entries.maybe(10, "GHOST_SUPPRESSION", {"0"});
  entries.maybe(10, "ILLUMINATION_CHANGE", {"0"});
  return entries.list;
}
