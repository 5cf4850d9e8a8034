// Where the plug-in looks for motion, as its configuration document has it.
#pragma once

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host::events {

struct Region {
  std::string name;
  std::vector<cv::Point2d> corners;  // fractions of the frame

  // By the even-odd rule: an outline may cross itself.
  bool contains(cv::Point2d point) const;
};

class Regions {
 public:
  // `document`: one that the plug-in accepted. What is no region in it is left out.
  explicit Regions(const std::string& document);
  Regions() = default;

  // Whether motion at this place counts: in a region, in no exclusion.
  bool watched(cv::Point2d point) const;

  // Adds the regions that share a part with the box outside the exclusions to `names`, which stay in the
  // document's order. Parts below about 1/256 of the box may go unnoticed.
  void touched(const cv::Rect2d& box, std::vector<std::string>& names) const;

  const std::vector<Region>& included() const { return included_; }
  const std::vector<Region>& excluded() const { return excluded_; }

 private:
  bool excluded_at(cv::Point2d point) const;
  bool touches(const Region& region, const cv::Rect2d& box) const;

  std::vector<Region> included_;
  std::vector<Region> excluded_;
};

}  // namespace lm::host::events
