#include "host/outputs/report/heat_map.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <string>

#include "host/outputs/overlay.h"
#include "host/outputs/report/percent.h"

namespace lm::host::outputs::report {
namespace {

constexpr int kMostCells = 640;  // along the longer side
constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;

cv::Size grid_of(cv::Size frame) {
  const double scale = std::min(1.0, double(kMostCells) / std::max(frame.width, frame.height));
  return {std::max(1, int(std::lround(frame.width * scale))),
          std::max(1, int(std::lround(frame.height * scale)))};
}

cv::Mat coloured(const cv::Mat& levels) {
  cv::Mat colours;
  cv::applyColorMap(levels, colours, cv::COLORMAP_TURBO);
  return colours;
}

// Maps counts up to `most` to positions 0 to 255 on the colour scale: the inverse of heat_at.
cv::Mat levels_of(const cv::Mat& counts, double most) {
  cv::Mat shares;
  counts.convertTo(shares, CV_32F, 1 / most);
  cv::sqrt(shares, shares);
  cv::Mat levels;
  shares.convertTo(levels, CV_8U, 255);
  return levels;
}

// A text scale at which the widest line of the legend fits.
double text_scale(int width, const std::string& text) {
  const cv::Size unit = cv::getTextSize(text, kFont, 1, 1, nullptr);
  return std::clamp(0.94 * width / unit.width, 0.2, std::max(0.45, width / 1400.0));
}

}  // namespace

HeatMap::HeatMap(cv::Size frame)
    : counts_(cv::Mat::zeros(grid_of(frame), CV_32S)), covered_(cv::Mat::zeros(counts_.size(), CV_8U)) {}

void HeatMap::add(const events::Boxes& boxes) {
  ++frames_;
  if (boxes.empty()) return;
  covered_ = 0;
  for (const events::Box& box : boxes) covered_(pixels_of(box.area, counts_.size())) = 1;
  cv::add(counts_, covered_, counts_, cv::noArray(), CV_32S);
}

double HeatMap::highest() const {
  double most = 0;
  cv::minMaxLoc(counts_, nullptr, &most);
  return frames_ > 0 ? most / double(frames_) : 0;
}

cv::Mat HeatMap::over(const cv::Mat& frame) const {
  cv::Mat grey;
  cv::cvtColor(frame, grey, cv::COLOR_BGR2GRAY);
  cv::Mat picture;
  cv::cvtColor(grey, picture, cv::COLOR_GRAY2BGR);
  const double highest_share = highest();
  if (highest_share <= 0) return picture;
  cv::Mat counts;
  counts_.convertTo(counts, CV_32F);
  cv::resize(counts, counts, frame.size(), 0, 0, cv::INTER_LINEAR);
  cv::Mat blended;
  cv::addWeighted(picture, 0.4, coloured(levels_of(counts, highest_share * double(frames_))), 0.6, 0,
                  blended);
  blended.copyTo(picture, counts > 0);
  return picture;
}

double heat_at(double place) { return place * place; }

cv::Mat with_legend(const cv::Mat& picture, double highest) {
  const int width = picture.cols;
  const std::string title = "Share of the frames with motion here";
  const double scale = text_scale(width, title);
  const int strokes = std::max(1, int(std::lround(scale * 1.6)));
  const int line = cv::getTextSize(title, kFont, scale, strokes, nullptr).height;
  const int margin = std::max(2, int(width * 0.03));
  const int bar = std::max(6, line);
  const int step = line + line / 2 + 2;

  cv::Mat whole(picture.rows + 2 * step + bar + 2 * line, width, CV_8UC3, cv::Scalar(26, 24, 22));
  picture.copyTo(whole(cv::Rect(0, 0, picture.cols, picture.rows)));
  const cv::Scalar letters(240, 240, 240);
  const auto write = [&](const std::string& text, int x, int y) {
    cv::putText(whole, text, {x, y}, kFont, scale, letters, strokes, cv::LINE_AA);
  };
  write(title, margin, picture.rows + step);

  const cv::Rect place(margin, picture.rows + step + line, std::max(1, width - 2 * margin), bar);
  cv::Mat ramp(1, 256, CV_8U);
  for (int i = 0; i < 256; ++i) ramp.at<std::uint8_t>(0, i) = static_cast<std::uint8_t>(i);
  cv::resize(coloured(ramp), whole(place), place.size(), 0, 0, cv::INTER_LINEAR);
  for (const double along : {0.0, 0.5, 1.0}) {
    const std::string text = percent(heat_at(along) * highest);
    const int length = cv::getTextSize(text, kFont, scale, strokes, nullptr).width;
    write(text, place.x + int(along * (place.width - length)), place.br().y + step);
  }
  return whole;
}

}  // namespace lm::host::outputs::report
