// Text tables on standard output, row by row.
#pragma once

#include <string>
#include <vector>

namespace lm::bench {

// "12.3": at least three digits; "-" for NaN.
std::string figure(double value);

// The first `labels` columns are left-aligned labels, the others right-aligned figures.
class Table {
 public:
  Table(std::string title, std::vector<std::string> heads, std::size_t labels);
  void row(const std::vector<std::string>& cells) const;

 private:
  std::vector<std::size_t> widths_;
  std::size_t labels_;
};

}  // namespace lm::bench
