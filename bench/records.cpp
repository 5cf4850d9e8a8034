#include "bench/records.h"

#include <cstdio>
#include <fstream>
#include <limits>
#include <stdexcept>

namespace lm::bench {

double Records::value(const std::string& section, const std::string& scene, const std::string& size,
                      const std::string& candidate, const std::string& measure) const {
  for (const Record& record : all_) {
    if (record.section == section && record.scene == scene && record.size == size &&
        record.candidate == candidate && record.measure == measure) {
      return record.value;
    }
  }
  return std::numeric_limits<double>::quiet_NaN();
}

void Records::write_csv(const std::string& file) const {
  std::ofstream out(file);
  out << "section,scene,size,candidate,measure,value\n";
  for (const Record& r : all_) {
    out << r.section << ',' << r.scene << ',' << r.size << ",\"" << r.candidate << "\"," << r.measure << ','
        << r.value << '\n';
  }
  if (!out.flush()) throw std::runtime_error("cannot write " + file);
}

std::string text_of(cv::Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

cv::Size size_of(const std::string& text) {
  cv::Size size;
  char end = 0;
  if (std::sscanf(text.c_str(), "%dx%d%c", &size.width, &size.height, &end) != 2 || size.width < 64 ||
      size.height < 64) {
    throw std::invalid_argument("a size must be like 1920x1080, not " + text);
  }
  return size;
}

}  // namespace lm::bench
