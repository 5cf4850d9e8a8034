// Point in polygon, rasterisation and combination of masks.
#include <cstddef>
#include <cstring>

#include "base/integers.h"
#include "config/polygon.h"

int pnpoly(int nvert, float* vertx, float* verty, float testx, float testy) {
  int inside = 0;
  for (int i = 0, j = nvert - 1; i < nvert; j = i++) {
    if ((verty[i] > testy) == (verty[j] > testy)) continue;
    const float crossing = (testy - verty[i]) * (vertx[j] - vertx[i]) / (verty[j] - verty[i]) + vertx[i];
    if (crossing > testx) inside = !inside;
  }
  return inside;
}

int isWithinPoly(const std::vector<pnt>& poly, float x, float y) {
  int inside = 0;
  for (std::size_t i = 0, j = poly.size() - 1; i < poly.size(); j = i++) {
    const auto yi = static_cast<float>(poly[i].y);
    const auto yj = static_cast<float>(poly[j].y);
    if ((yi > y) == (yj > y)) continue;
    const auto dx = static_cast<float>(lm::wrapSub(poly[j].x, poly[i].x));
    const auto dy = static_cast<float>(lm::wrapSub(poly[j].y, poly[i].y));
    const float crossing = dx * (y - yi) / dy + static_cast<float>(poly[i].x);
    // Kept: >= where pnpoly has >, so a point on an edge counts that edge.
    if (crossing >= x) inside = !inside;
  }
  return inside;
}

int cvtPoly2Mask(const std::vector<pnt>& poly, std::uint8_t* mask, int w, int h) {
  if (w < 1 || h < 1) return 1;
  const auto width = static_cast<std::size_t>(w);
  for (int y = 0; y < h; ++y) {
    std::uint8_t* row = mask + static_cast<std::size_t>(y) * width;
    for (int x = 0; x < w; ++x) {
      row[x] = static_cast<std::uint8_t>(isWithinPoly(poly, static_cast<float>(x), static_cast<float>(y)));
    }
  }
  return 1;
}

void unionMask(std::uint8_t* dst, std::uint8_t* src, int w, int h) {
  const std::size_t count = lm::countOf(lm::wrapMul(w, h));
  for (std::size_t i = 0; i < count; ++i) {
    if (dst[i] == 0 && src[i] != 0) dst[i] = 1;
  }
}

void unionNegMask(std::uint8_t* dst, std::uint8_t* src, int w, int h) {
  const std::size_t count = lm::countOf(lm::wrapMul(w, h));
  for (std::size_t i = 0; i < count; ++i) {
    if (dst[i] != 0 && src[i] != 0) dst[i] = 0;
  }
}
