// Boxes of labelled regions.
#include <algorithm>
#include <cstddef>

#include "objects/component.h"

namespace {

template <typename Pixel, typename Label>
bool rowHolds(Pixel** rows, Label label, int y, int width) {
  return width >= 1 && std::any_of(rows[y], rows[y] + width, [label](Pixel pixel) { return pixel == label; });
}

template <typename Pixel, typename Label>
bool columnHolds(Pixel** rows, Label label, int x, int height) {
  return std::any_of(rows, rows + std::max(height, 0), [=](const Pixel* row) { return row[x] == label; });
}

boxRect wholeFrame(int width, int height) {
  return {0.0F, 0.0F, static_cast<float>(width), static_cast<float>(height), {}};
}

// The first position from `from` on, going by `step`, up to but not including `stop`, where `test` holds;
// `stop` when there is none.
template <typename Test>
int firstWhere(int from, int stop, int step, Test test) {
  int position = from;
  while (position != stop && !test(position)) position += step;
  return position;
}

}  // namespace

boxRect lm::boxBetween(int left, int top, int right, int bottom, int width, int height) {
  boxRect box = wholeFrame(width, height);
  // Kept: the box includes the first empty row or column on every side. The margin lets pieces that lie a
  // pixel apart reach each other when boxes are joined.
  box.x = static_cast<float>(std::max(left, 0));
  box.y = static_cast<float>(std::max(top, 0));
  // Kept: where the component touches the bottom or right border the side stays the whole frame's.
  if (bottom < height) box.height = static_cast<float>(bottom) - box.y + 1.0F;
  if (right < width) box.width = static_cast<float>(right) - box.x + 1.0F;
  return box;
}

boxRect findBoundingBox(std::uint32_t** rows, int label, int width, int height, int x0, int y0) {
  const auto wanted = static_cast<std::uint32_t>(label);
  const auto emptyRow = [&](int y) { return !rowHolds(rows, wanted, y, width); };
  const auto emptyColumn = [&](int x) { return !columnHolds(rows, wanted, x, height); };
  const bool rowInside = y0 >= 0 && y0 < height;
  const bool columnInside = x0 >= 0 && x0 < width;
  const int top = rowInside && width >= 1 ? firstWhere(y0, -1, -1, emptyRow) : -1;
  const int left = columnInside ? firstWhere(x0, -1, -1, emptyColumn) : -1;
  const int bottom = rowInside ? firstWhere(y0, height, 1, emptyRow) : height;
  const int right = columnInside ? firstWhere(x0, width, 1, emptyColumn) : width;
  return lm::boxBetween(left, top, right, bottom, width, height);
}

boxRect findBoundingBox(std::uint8_t** rows, int label, int width, int height) {
  const auto inRow = [&](int y) { return rowHolds(rows, label, y, width); };
  const auto inColumn = [&](int x) { return columnHolds(rows, label, x, height); };
  boxRect box = wholeFrame(width, height);

  const int top = firstWhere(0, std::max(height, 0), 1, inRow);
  if (top >= height) return box;
  const int left = firstWhere(0, std::max(width, 0), 1, inColumn);
  const int bottom = firstWhere(height - 1, -1, -1, inRow);
  const int right = firstWhere(width - 1, -1, -1, inColumn);
  box.y = static_cast<float>(top);
  box.x = static_cast<float>(left);
  box.height = static_cast<float>(bottom) - box.y + 1.0F;
  box.width = static_cast<float>(right) - box.x + 1.0F;
  return box;
}

void findFgBox(std::uint8_t** /*rows*/, int width, int height, int /*depth*/, float /*ratio*/, int& /*count*/,
               std::vector<boxRect>& /*boxes*/) {
  // Kept: the scratch grid is all that this function ever makes.
  const auto columns = static_cast<std::size_t>(std::max(width, 0));
  const std::vector<std::vector<std::uint8_t>> grid(static_cast<std::size_t>(std::max(height, 0)),
                                                    std::vector<std::uint8_t>(columns));
}
