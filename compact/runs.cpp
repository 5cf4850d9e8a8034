#include "compact/runs.h"

#include <algorithm>
#include <cassert>
#include <iterator>

#include "compact/bit_rows.h"

namespace lm::compact {
namespace {

void include(SpannedComponent& spanned, const Run& run, std::int32_t row) {
  spanned.component.count += run.end - run.begin;
  spanned.left = std::min(spanned.left, run.begin);
  spanned.right = std::max(spanned.right, run.end - 1);
  spanned.bottom = row;
}

}  // namespace

void RunLabeller::start(std::int32_t width) {
  width_ = width;
  runs_.clear();
  rows_.clear();
  components_.clear();
}

void RunLabeller::addRow(const std::uint64_t* bits, std::size_t words, std::int32_t y) {
  assert(rows_.empty() || rows_.back().y < y);
  assert(bits[-1] == 0 && bits[words] == 0);
  assert(static_cast<std::size_t>(width_) <= words * wordPixels);
  edges_.resize(words + 1);
  for (std::size_t w = 0; w <= words; ++w) edges_[w] = bits[w] ^ leftOf(bits + w);

  const auto begin = static_cast<std::uint32_t>(runs_.size());
  bool open = false;
  forEachColumn(edges_.data(), words + 1, [&](std::int32_t column) {
    if (open) {
      runs_.back().end = column;
    } else {
      runs_.push_back({column, column, static_cast<std::uint32_t>(runs_.size())});
    }
    open = !open;
  });
  rows_.push_back({y, begin, static_cast<std::uint32_t>(runs_.size())});
  if (rows_.size() < 2) return;
  const RunsOfRow& above = rows_[rows_.size() - 2];
  if (above.y + 1 == y) uniteWithRowAbove(above, rows_.back());
}

std::uint32_t RunLabeller::root(std::uint32_t run) {
  while (runs_[run].parent != run) {
    runs_[run].parent = runs_[runs_[run].parent].parent;
    run = runs_[run].parent;
  }
  return run;
}

// The earlier run stays the root, so that a component's root is its first run in raster order.
void RunLabeller::unite(std::uint32_t a, std::uint32_t b) {
  a = root(a);
  b = root(b);
  if (a < b) runs_[b].parent = a;
  if (b < a) runs_[a].parent = b;
}

// The runs of both rows are sorted by column: one pass over the two finds every pair that shares a column.
void RunLabeller::uniteWithRowAbove(const RunsOfRow& above, const RunsOfRow& below) {
  for (std::uint32_t a = above.begin, b = below.begin; a < above.end && b < below.end;) {
    const Run& upper = runs_[a];
    const Run& lower = runs_[b];
    const bool upperEndsFirst = upper.end < lower.end;
    if (upper.begin < lower.end && lower.begin < upper.end) unite(a, b);
    ++(upperEndsFirst ? a : b);
  }
}

const std::vector<SpannedComponent>& RunLabeller::number() {
  assert(components_.empty());
  for (const RunsOfRow& row : rows_) {
    for (std::uint32_t i = row.begin; i < row.end; ++i) {
      Run& run = runs_[i];
      if (run.parent == i) {
        const std::int32_t first = row.y * width_ + run.begin;
        const auto index = static_cast<std::uint32_t>(components_.size());
        components_.push_back({{index + 2, 0, first}, run.begin, row.y, run.begin, row.y});
        run.parent = index;
      } else {
        run.parent = runs_[run.parent].parent;  // an earlier run: it holds its component already
      }
      include(components_[run.parent], run, row.y);
    }
  }
  return components_;
}

std::size_t RunLabeller::componentAt(std::int32_t x, std::int32_t y) const {
  const auto row =
      std::lower_bound(rows_.begin(), rows_.end(), y,
                       [](const RunsOfRow& runs, std::int32_t wanted) { return runs.y < wanted; });
  assert(row != rows_.end() && row->y == y);
  const auto begin = runs_.begin() + row->begin;
  const auto after = std::upper_bound(begin, runs_.begin() + row->end, x,
                                      [](std::int32_t column, const Run& run) { return column < run.begin; });
  assert(after != begin && x < std::prev(after)->end);
  return std::prev(after)->parent;
}

}  // namespace lm::compact
