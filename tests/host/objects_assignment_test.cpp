#include "host/events/objects/assignment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using lm::host::events::objects::assign;

double cost_of(const cv::Mat1d& cost, const std::vector<int>& columns) {
  double sum = 0;
  for (int row = 0; row < cost.rows; ++row) {
    const int column = columns[static_cast<std::size_t>(row)];
    if (column >= 0) sum += cost(row, column);
  }
  return sum;
}

// All pairings of a square matrix; what has no partner is paired with zeros.
double lowest_cost(const cv::Mat1d& cost) {
  const int side = std::max(cost.rows, cost.cols);
  cv::Mat1d square(side, side, 0.0);
  cost.copyTo(square(cv::Rect(0, 0, cost.cols, cost.rows)));
  std::vector<int> columns(static_cast<std::size_t>(side));
  std::iota(columns.begin(), columns.end(), 0);
  double lowest = cost_of(square, columns);
  while (std::next_permutation(columns.begin(), columns.end())) {
    lowest = std::min(lowest, cost_of(square, columns));
  }
  return lowest;
}

TEST(Assignment, TakesTheLowestSumNotTheLowestCost) {
  const cv::Mat1d cost = (cv::Mat1d(2, 2) << 1, 2, 2, 10);
  EXPECT_EQ(assign(cost), (std::vector<int>{1, 0})) << "2 + 2, not 1 + 10";
}

TEST(Assignment, LeavesRowsOverWhenThereAreFewerColumns) {
  const cv::Mat1d cost = (cv::Mat1d(3, 1) << 3, 1, 2);
  EXPECT_EQ(assign(cost), (std::vector<int>{-1, 0, -1}));
}

TEST(Assignment, EveryShapeHasTheLowestSumOfAllPairings) {
  std::mt19937 random(7);
  for (int rows = 1; rows <= 6; ++rows) {
    for (int columns = 1; columns <= 6; ++columns) {
      cv::Mat1d cost(rows, columns);
      for (double& value : cost) value = static_cast<double>(random() % 20) - 5;
      std::vector<int> pairs = assign(cost);
      EXPECT_EQ(std::count(pairs.begin(), pairs.end(), -1), std::max(0, rows - columns));
      EXPECT_DOUBLE_EQ(cost_of(cost, pairs), lowest_cost(cost)) << cost;
      std::erase(pairs, -1);
      std::sort(pairs.begin(), pairs.end());
      EXPECT_EQ(std::adjacent_find(pairs.begin(), pairs.end()), pairs.end()) << "a column twice";
    }
  }
}

}  // namespace
