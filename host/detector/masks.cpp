#include "host/detector/masks.h"

#include <algorithm>
#include <cstddef>

namespace lm::host::detector {
namespace {

// The root of a run's tree; the run with the smallest number.
int root_of(std::vector<Run>& runs, int run) {
  const auto parent = [&](int of) -> int& { return runs[static_cast<std::size_t>(of)].part; };
  while (parent(run) != run) run = parent(run) = parent(parent(run));
  return run;
}

void unite(std::vector<Run>& runs, int a, int b) {
  a = root_of(runs, a);
  b = root_of(runs, b);
  runs[static_cast<std::size_t>(std::max(a, b))].part = std::min(a, b);
}

void add_row(std::vector<Run>& runs, const cv::Mat& mask, int y) {
  const auto* row = mask.ptr<std::uint8_t>(y);
  for (int x = 0; x < mask.cols; ++x) {
    if (row[x] == 0) continue;
    const int begin = x;
    while (x < mask.cols && row[x] != 0) ++x;
    runs.push_back({y, begin, x, static_cast<int>(runs.size())});
  }
}

// Unites the runs [middle, end) of a row with those [begin, middle) of the row above; `reach`: 1 if corners
// touch, else 0.
void join_rows(std::vector<Run>& runs, std::size_t begin, std::size_t middle, int reach) {
  std::size_t above = begin;
  for (std::size_t below = middle; below < runs.size(); ++below) {
    while (above < middle && runs[above].end + reach <= runs[below].begin) ++above;
    for (std::size_t i = above; i < middle && runs[i].begin < runs[below].end + reach; ++i)
      unite(runs, static_cast<int>(i), static_cast<int>(below));
  }
}

// Combines the 3 by 3 pixels around each.
template <typename Combine>
cv::Mat combined(const cv::Mat& mask, const Combine& combine) {
  cv::Mat result(mask.size(), CV_8U);
  const int width = mask.cols;
  std::vector<std::uint8_t> column(static_cast<std::size_t>(width) + 2);
  std::uint8_t* three = column.data() + 1;
  for (int y = 0; y < mask.rows; ++y) {
    const auto* above = mask.ptr<std::uint8_t>(std::max(y - 1, 0));
    const auto* row = mask.ptr<std::uint8_t>(y);
    const auto* below = mask.ptr<std::uint8_t>(std::min(y + 1, mask.rows - 1));
    auto* to = result.ptr<std::uint8_t>(y);
#pragma omp simd
    for (int x = 0; x < width; ++x) three[x] = combine(combine(above[x], row[x]), below[x]);
    three[-1] = three[0];
    three[width] = three[width - 1];
#pragma omp simd
    for (int x = 0; x < width; ++x) to[x] = combine(combine(three[x - 1], three[x]), three[x + 1]);
  }
  return result;
}

}  // namespace

cv::Mat dilated(const cv::Mat& mask) {
  return combined(mask, [](int a, int b) { return static_cast<std::uint8_t>(a | b); });
}

cv::Mat eroded(const cv::Mat& mask) {
  return combined(mask, [](int a, int b) { return static_cast<std::uint8_t>(a & b); });
}

ConnectedParts connected_parts(const cv::Mat& mask, Touching touching) {
  ConnectedParts found;
  std::vector<Run>& runs = found.runs;
  std::size_t begin = 0;
  for (int y = 0; y < mask.rows; ++y) {
    const std::size_t middle = runs.size();
    add_row(runs, mask, y);
    join_rows(runs, begin, middle, touching == Touching::kCorners ? 1 : 0);
    begin = middle;
  }
  // A root comes before all others of its tree, so that its part has its number by then.
  for (std::size_t i = 0; i < runs.size(); ++i) {
    Run& run = runs[i];
    const cv::Rect place(run.begin, run.y, run.end - run.begin, 1);
    if (run.part == static_cast<int>(i)) {
      run.part = static_cast<int>(found.areas.size());
      found.areas.push_back(place.width);
      found.boxes.push_back(place);
    } else {
      run.part = runs[static_cast<std::size_t>(run.part)].part;
      found.areas[static_cast<std::size_t>(run.part)] += place.width;
      found.boxes[static_cast<std::size_t>(run.part)] |= place;
    }
  }
  return found;
}

int count_in(const Run& run, const cv::Mat& mask) {
  const auto* row = mask.ptr<std::uint8_t>(run.y);
  int count = 0;
  for (int x = run.begin; x < run.end; ++x) count += row[x] & 1;
  return count;
}

void set(cv::Mat& mask, const Run& run, std::uint8_t value) {
  auto* row = mask.ptr<std::uint8_t>(run.y);
  std::fill(row + run.begin, row + run.end, value);
}

}  // namespace lm::host::detector
