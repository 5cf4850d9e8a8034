// The row-table morphology.
#include <algorithm>
#include <cstdlib>

#include "objects/morphology.h"

namespace {

struct Image {
  std::uint8_t** rows;
  int width;
  int height;

  bool contains(int x, int y) const { return x >= 0 && x < width && y >= 0 && y < height; }
};

bool radiusFits(int width, int height, int radius) {
  return radius >= 1 && 2 * std::int64_t{radius} <= std::min(width, height);
}

// Two away from `value`, on the side where a byte has room.
std::uint8_t markerFor(std::uint8_t value) {
  return static_cast<std::uint8_t>(value < 254 ? value + 2 : value - 2);
}

void replaceAll(const Image& image, std::uint8_t from, std::uint8_t to) {
  for (int y = 0; y < image.height; ++y) std::replace(image.rows[y], image.rows[y] + image.width, from, to);
}

void markDiamond(const Image& image, int x, int y, int radius, std::uint8_t set, std::uint8_t marker) {
  for (int dy = -radius; dy <= radius; ++dy) {
    const int reach = radius - std::abs(dy);
    for (int dx = -reach; dx <= reach; ++dx) {
      if (!image.contains(x + dx, y + dy)) continue;
      std::uint8_t& pixel = image.rows[y + dy][x + dx];
      if (pixel != set) pixel = marker;
    }
  }
}

bool borders(const Image& image, int x, int y, std::uint8_t value) {
  const auto holds = [&](int nx, int ny) { return image.contains(nx, ny) && image.rows[ny][nx] == value; };
  return holds(x - 1, y) || holds(x + 1, y) || holds(x, y - 1) || holds(x, y + 1);
}

}  // namespace

int dilate_ncv2(std::uint8_t** rows, std::uint8_t set, int width, int height, int radius) {
  if (!radiusFits(width, height, radius)) return 0;
  const Image image{rows, width, height};
  const std::uint8_t marker = markerFor(set);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (rows[y][x] == set) markDiamond(image, x, y, radius, set, marker);
    }
  }
  replaceAll(image, marker, set);
  return 1;
}

int erode_ncv2(std::uint8_t** rows, std::uint8_t cleared, int width, int height, int radius) {
  if (!radiusFits(width, height, radius)) return 0;
  const Image image{rows, width, height};
  const std::uint8_t marker = markerFor(cleared);
  for (int pass = 0; pass < radius; ++pass) {
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        if (rows[y][x] == 255 && borders(image, x, y, cleared)) rows[y][x] = marker;
      }
    }
    replaceAll(image, marker, cleared);
  }
  return 1;
}
