#include "objects/runs.h"

namespace lm {
namespace {

std::uint32_t skipValue(std::uint32_t label, std::uint32_t value) {
  return label == value ? label + 1 : label;
}

void include(SpannedComponent& spanned, std::int32_t row, std::int32_t begin, std::int32_t end) {
  spanned.component.count += end - begin;
  spanned.left = std::min(spanned.left, begin);
  spanned.right = std::max(spanned.right, end - 1);
  spanned.bottom = row;
}

}  // namespace

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

// Both rows' runs rise from left to right: one walk over the two finds every pair that shares a column.
void RunLabeller::uniteWithRowAbove(std::size_t rowBegin) {
  const std::size_t rowEnd = runs_.size();
  if (rowBegin == rowEnd) return;
  const bool adjacent = aboveBegin_ < aboveEnd_ && runs_[aboveBegin_].row + 1 == runs_[rowBegin].row;
  std::size_t above = adjacent ? aboveBegin_ : aboveEnd_;
  std::size_t below = rowBegin;
  while (above < aboveEnd_ && below < rowEnd) {
    const Run& a = runs_[above];
    const Run& b = runs_[below];
    const bool aEndsFirst = a.end < b.end;
    if (a.begin < b.end && b.begin < a.end) {
      unite(static_cast<std::uint32_t>(above), static_cast<std::uint32_t>(below));
    }
    if (aEndsFirst) {
      ++above;
    } else {
      ++below;
    }
  }
  aboveBegin_ = rowBegin;
  aboveEnd_ = rowEnd;
}

std::vector<SpannedComponent> RunLabeller::label(std::uint32_t* labels, std::uint32_t value) {
  std::vector<SpannedComponent> components;
  std::vector<std::uint32_t> componentOf(runs_.size());
  std::uint32_t next = skipValue(2, value);
  for (std::uint32_t i = 0; i < runs_.size(); ++i) {
    const Run& run = runs_[i];
    const std::int32_t first = run.row * width_ + run.begin;
    const std::uint32_t rootRun = root(i);
    if (rootRun == i) {
      componentOf[i] = static_cast<std::uint32_t>(components.size());
      components.push_back({{next, 0, first}, run.begin, run.row, run.begin, run.row});
      next = skipValue(next + 1, value);
    }
    componentOf[i] = componentOf[rootRun];
    SpannedComponent& spanned = components[componentOf[i]];
    include(spanned, run.row, run.begin, run.end);
    std::fill_n(labels + first, run.end - run.begin, spanned.component.label);
  }
  return components;
}

}  // namespace lm
