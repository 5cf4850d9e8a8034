// All measurements, one number per record: tables, the CSV file, the picture and the requirements are views
// of it.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::bench {

struct Record {
  std::string section, scene, size, candidate, measure;
  double value = 0;
};

class Records {
 public:
  void add(Record record) { all_.push_back(std::move(record)); }

  // The value of a record; NaN if it was not measured.
  double value(const std::string& section, const std::string& scene, const std::string& size,
               const std::string& candidate, const std::string& measure) const;

  const std::vector<Record>& all() const { return all_; }
  void write_csv(const std::string& file) const;  // throws std::runtime_error

 private:
  std::vector<Record> all_;
};

// "1920x1080"
std::string text_of(cv::Size size);
// Throws std::invalid_argument.
cv::Size size_of(const std::string& text);

inline const cv::Size kVga(640, 480);
inline const cv::Size kFullHd(1920, 1080);

}  // namespace lm::bench
