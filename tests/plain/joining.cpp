// Joining and filtering boxes, and the adaptive minimum component size.
#include <algorithm>
#include <cmath>

#include "tests/plain/model.h"

namespace plain {
namespace {

struct Span {
  float start, length;
  float end() const { return start + length; }
};

// A span ends before its start if a side of the frame is below 0.
bool startsIn(const Span& a, const Span& b) {
  return std::min(b.start, b.end()) <= a.start && a.start <= std::max(b.start, b.end());
}

bool meet(const Span& a, const Span& b) { return startsIn(a, b) || startsIn(b, a); }

// Distance between facing ends, in whole pixels; also positive for spans that overlap.
int apart(const Span& a, const Span& b) {
  return std::min(truncated(std::fabs(a.start - b.end())), truncated(std::fabs(b.start - a.end())));
}

Span covered(const Span& a, const Span& b) {
  const float start = std::min(a.start, b.start);
  return {start, std::max(a.end(), b.end()) - start + 1.0F};  // always one pixel too long
}

Span across(const Box& box) { return {box.x, box.width}; }
Span down(const Box& box) { return {box.y, box.height}; }

Box unite(const Box& a, const Box& b) {
  const Span x = covered(across(a), across(b)), y = covered(down(a), down(b));
  return {x.start, y.start, x.length, y.length};
}

int distance(float ax, float ay, float bx, float by) {
  const float dx = ax - bx, dy = ay - by;
  return truncated(std::sqrt(dx * dx + dy * dy));
}

}  // namespace

float Model::gap(const Box& a, const Box& b) {
  const bool meetX = meet(across(a), across(b)), meetY = meet(down(a), down(b));
  const int gapX = apart(across(a), across(b)), gapY = apart(down(a), down(b));
  if (meetX && meetY) {
    mark(Branch::gapBoth);
    return static_cast<float>(std::min(gapX, gapY));
  }
  if (meetX) {
    mark(Branch::gapInY);
    return static_cast<float>(gapY);
  }
  if (meetY) {
    mark(Branch::gapInX);
    return static_cast<float>(gapX);
  }
  mark(Branch::gapDiagonal);
  return std::sqrt(static_cast<float>(wrapAdd(wrapMul(gapX, gapX), wrapMul(gapY, gapY))));
}

bool Model::near(const Box& a, const Box& b) {
  const float pixels = static_cast<float>(truncated(gap(a, b)));
  markIf(pixels == thrConnect, Branch::gapAtBound);
  mark(pixels <= thrConnect ? Branch::gapJoins : Branch::gapTooWide);
  return pixels <= thrConnect;
}

bool Model::overlap(const Box& a, const Box& b) {
  const Box both = unite(a, b);
  const float spareX = a.width + b.width - both.width, spareY = a.height + b.height - both.height;
  const bool overlapping = spareX >= 0.0F && spareY >= 0.0F;
  markIf(overlapping && (spareX == 0.0F || spareY == 0.0F), Branch::overlapAtBound);
  mark(overlapping ? Branch::overlapJoins : Branch::overlapApart);
  return overlapping;
}

bool Model::largeEnough(const Box& box) {
  const float leastWidth = static_cast<float>(minObjWPxl), leastHeight = static_cast<float>(minObjHPxl);
  const bool wide = box.width >= leastWidth, high = box.height >= leastHeight;
  markIf(wide && !high, Branch::sizeByWidth);
  markIf(high && !wide, Branch::sizeByHeight);
  markIf(!wide && !high, Branch::sizeTooSmall);
  markIf(box.width == leastWidth && !high, Branch::sizeWidthAtBound);
  markIf(box.height == leastHeight && !wide, Branch::sizeHeightAtBound);
  return wide || high;
}

// One pass: every box joins the first later one that qualifies, at most one each.
bool Model::joinOnce(std::vector<Box>& list, const std::function<bool(const Box&, const Box&)>& belong) {
  std::vector<Box> result;
  std::vector<bool> used(list.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (used[i]) continue;
    std::size_t j = i + 1;
    while (j < list.size() && (used[j] || !belong(list[i], list[j]))) ++j;
    if (j < list.size()) used[j] = true;
    result.push_back(j < list.size() ? unite(list[i], list[j]) : list[i]);
  }
  const bool joined = result.size() < list.size();
  list = result;
  return joined;
}

void Model::adapt(bool foundBoxes, const std::vector<Vertex>& small) {
  if (!autoSensitivity) {
    mark(Branch::adaptOff);
    return;
  }
  if (!foundBoxes && small.size() >= 2) {
    adaptToSmall(small);
    return;
  }
  mark(foundBoxes && small.size() >= 2 ? Branch::smallBesideBoxes : Branch::fewSmall);
  const bool held = holdCcPxl >= 1;
  if (held) --holdCcPxl;
  if (thrCcPxl2 == thrCcPxl) {
    mark(held ? Branch::restHeld : Branch::restFree);
  } else if (held) {
    mark(Branch::restoreHeld);
  } else {
    const int twice = wrapMul(2, thrCcPxl2);
    mark(twice < thrCcPxl ? Branch::restoreDoubles : Branch::restoreReaches);
    thrCcPxl2 = std::min(twice, thrCcPxl);
  }
}

// Small pieces close together lower the threshold, so that next time they count as objects.
void Model::adaptToSmall(const std::vector<Vertex>& small) {
  float sumX = 0, sumY = 0;
  for (const Vertex& piece : small) {
    sumX += static_cast<float>(piece.x);
    sumY += static_cast<float>(piece.y);
  }
  const float count = static_cast<float>(small.size());
  int farthest = 0, widest = 0;
  for (const Vertex& piece : small) {
    const float x = static_cast<float>(piece.x), y = static_cast<float>(piece.y);
    farthest = std::max(farthest, distance(x, y, sumX / count, sumY / count));
    for (const Vertex& other : small) {
      widest = std::max(widest, distance(x, y, static_cast<float>(other.x), static_cast<float>(other.y)));
    }
  }

  const bool held = holdCcPxl >= 1;
  markIf(farthest == szImgX * 0.25, Branch::scatteredWideAtBound);
  if (farthest > szImgX * 0.25) {
    mark(held ? Branch::scatteredWideHeld : Branch::scatteredWide);
    if (held) --holdCcPxl;
    return;
  }
  const float limit = static_cast<float>(widest) * 0.75F;
  markIf(static_cast<float>(farthest) == limit, Branch::outlierAtBound);
  if (static_cast<float>(farthest) > limit) {
    mark(held ? Branch::outlierHeld : Branch::outlier);
    if (held) --holdCcPxl;
    return;
  }
  holdCcPxl = 3;
  const int quarter = truncated(thrCcPxl2 * 0.25);
  mark(quarter >= 1 ? Branch::lowered : Branch::loweredToOne);
  thrCcPxl2 = std::max(1, quarter);
}

}  // namespace plain
