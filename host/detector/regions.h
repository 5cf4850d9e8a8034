// The regions of a configuration document.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host::detector {

struct Region {
  std::string name;
  std::vector<cv::Point2d> corners;  // fractions of the frame

  // By the even-odd rule, because an outline may cross itself.
  bool contains(cv::Point2d point) const;
};

class Regions {
 public:
  // `document`: accepted by the detector. Entries that are not regions are skipped; without regions of
  // interest the whole frame is one, as for the detector.
  explicit Regions(const std::string& document);
  Regions() = default;

  // Whether motion at this point counts: inside a region and outside all exclusion regions.
  bool watched(cv::Point2d point) const;

  // The names of the regions of interest in the document's order, each once.
  std::vector<std::string> names() const;

  // The names of those that overlap the box outside the exclusion regions. Overlaps below about 1/256 of the
  // box may be missed.
  std::vector<std::string> touched(const cv::Rect2d& box) const;

  const std::vector<Region>& included() const { return included_; }
  const std::vector<Region>& excluded() const { return excluded_; }

 private:
  bool excluded_at(cv::Point2d point) const;
  bool touches(const Region& region, const cv::Rect2d& box) const;

  std::vector<Region> included_;
  std::vector<Region> excluded_;
};

}  // namespace lm::host::detector
