#include "bench/table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace lm::bench {

std::string figure(double value) {
  if (std::isnan(value)) return "-";
  const double size = std::abs(value);
  const int decimals = size >= 100 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : 3;
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

Table::Table(std::string title, std::vector<std::string> heads, std::size_t labels) : labels_(labels) {
  std::printf("\n%s\n\n", title.c_str());
  for (std::size_t i = 0; i < heads.size(); ++i) {
    widths_.push_back(std::max<std::size_t>(heads[i].size(), i < labels ? 10 : 6));
  }
  row(heads);
}

void Table::row(const std::vector<std::string>& cells) const {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const int width = static_cast<int>(widths_[i]);
    std::printf("%*s  ", i < labels_ ? -width : width, cells[i].c_str());
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace lm::bench
