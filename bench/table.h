// Text tables on standard output, a row at a time.
#pragma once

#include <string>
#include <vector>

namespace lm::bench {

// "12.3": three digits or more, "-" for what is not a number.
std::string figure(double value);

// "640x480" and the like stay left of their column, figures right; the first `labels` columns are labels.
class Table {
 public:
  Table(std::string title, std::vector<std::string> heads, std::size_t labels);
  void row(const std::vector<std::string>& cells) const;

 private:
  std::vector<std::size_t> widths_;
  std::size_t labels_;
};

}  // namespace lm::bench
