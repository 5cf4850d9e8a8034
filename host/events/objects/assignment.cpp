#include "host/events/objects/assignment.h"

#include <limits>

namespace lm::host::events::objects {
namespace {

// For no more rows than columns. Column 0 stands for the row that is being added.
class Augmentation {
 public:
  explicit Augmentation(const cv::Mat1d& cost)
      : cost_(cost), row_of_(columns() + 1, 0), of_row_(rows() + 1, 0), of_column_(columns() + 1, 0) {}

  std::vector<int> solve() {
    for (std::size_t row = 1; row <= rows(); ++row) add(row);
    std::vector<int> result(rows(), -1);
    for (std::size_t column = 1; column <= columns(); ++column) {
      if (row_of_[column] > 0) result[row_of_[column] - 1] = static_cast<int>(column) - 1;
    }
    return result;
  }

 private:
  std::size_t rows() const { return static_cast<std::size_t>(cost_.rows); }
  std::size_t columns() const { return static_cast<std::size_t>(cost_.cols); }

  double reduced(std::size_t row, std::size_t column) const {
    return cost_(static_cast<int>(row) - 1, static_cast<int>(column) - 1) - of_row_[row] - of_column_[column];
  }

  // Dijkstra's search over reduced costs, from the new row to a free column.
  void add(std::size_t row) {
    row_of_[0] = row;
    std::vector<double> least(columns() + 1, std::numeric_limits<double>::infinity());
    std::vector<std::size_t> before(columns() + 1, 0);
    std::vector<bool> done(columns() + 1, false);
    std::size_t at = 0;
    do {
      done[at] = true;
      std::size_t next = 0;
      for (std::size_t column = 1; column <= columns(); ++column) {
        if (done[column]) continue;
        const double through = reduced(row_of_[at], column);
        if (through < least[column]) {
          least[column] = through;
          before[column] = at;
        }
        if (next == 0 || least[column] < least[next]) next = column;
      }
      const double step = least[next];
      for (std::size_t column = 0; column <= columns(); ++column) {
        if (done[column]) {
          of_row_[row_of_[column]] += step;
          of_column_[column] -= step;
        } else {
          least[column] -= step;
        }
      }
      at = next;
    } while (row_of_[at] != 0);
    for (; at != 0; at = before[at]) row_of_[at] = row_of_[before[at]];
  }

  const cv::Mat1d& cost_;
  std::vector<std::size_t> row_of_;  // by column, from 1; 0 for free columns
  std::vector<double> of_row_;       // potentials
  std::vector<double> of_column_;
};

}  // namespace

std::vector<int> assign(const cv::Mat1d& cost) {
  if (cost.rows <= cost.cols) return Augmentation(cost).solve();
  cv::Mat1d turned;
  cv::transpose(cost, turned);
  const std::vector<int> row_of = Augmentation(turned).solve();
  std::vector<int> result(static_cast<std::size_t>(cost.rows), -1);
  for (std::size_t column = 0; column < row_of.size(); ++column) {
    result[static_cast<std::size_t>(row_of[column])] = static_cast<int>(column);
  }
  return result;
}

}  // namespace lm::host::events::objects
