#include "host/outputs/overlay.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace lm::host::outputs {
namespace {

const cv::Scalar kLine(64, 255, 96);
const cv::Scalar kShade(24, 32, 24);
const cv::Scalar kLetters(255, 255, 255);
constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
constexpr double kSmallestScale = 0.3;  // below that the font is illegible

// A pixel coordinate clamped to [0, side].
int inside(double pixel, int side) {
  return static_cast<int>(std::clamp(pixel, 0.0, static_cast<double>(side)));
}

// Fills a border of `width` pixels inside `rect`. Boxes that are too small are filled.
void draw_border(cv::Mat& image, const cv::Rect& rect, int width, const cv::Scalar& colour) {
  const int across = std::min(width, rect.width);
  const int down = std::min(width, rect.height);
  image(cv::Rect(rect.x, rect.y, rect.width, down)) = colour;
  image(cv::Rect(rect.x, rect.br().y - down, rect.width, down)) = colour;
  image(cv::Rect(rect.x, rect.y, across, rect.height)) = colour;
  image(cv::Rect(rect.br().x - across, rect.y, across, rect.height)) = colour;
}

void draw_box(cv::Mat& image, const cv::Rect& rect, int width) {
  const cv::Rect outer(rect.tl() - cv::Point(1, 1), rect.br() + cv::Point(1, 1));
  draw_border(image, outer & cv::Rect({0, 0}, image.size()), width + 2, kShade);
  draw_border(image, rect, width, kLine);
}

void draw_caption(cv::Mat& image, const std::string& text) {
  double scale = std::max(0.45, image.rows / 900.0);
  const cv::Size unit = cv::getTextSize(text, kFont, 1, 1, nullptr);
  const int margin = std::max(4, image.rows / 80);
  scale = std::min(scale, (image.cols - 2.0 * margin) / unit.width);
  if (scale < kSmallestScale) return;
  const int strokes = std::max(1, static_cast<int>(std::lround(scale * 1.5)));
  const cv::Size size = cv::getTextSize(text, kFont, scale, strokes, nullptr);
  const cv::Rect plate =
      cv::Rect(0, 0, size.width + 2 * margin, size.height + 2 * margin) & cv::Rect({0, 0}, image.size());
  cv::Mat area = image(plate);
  area.convertTo(area, -1, 0.35);
  cv::putText(image, text, {margin, margin + size.height}, kFont, scale, kLetters, strokes, cv::LINE_AA);
}

}  // namespace

cv::Rect pixels_of(const cv::Rect2d& box, cv::Size frame) {
  const cv::Point from(inside(std::floor(box.x * frame.width), frame.width),
                       inside(std::floor(box.y * frame.height), frame.height));
  const cv::Point to(inside(std::ceil((box.x + box.width) * frame.width), frame.width),
                     inside(std::ceil((box.y + box.height) * frame.height), frame.height));
  return {from, to};
}

int line_width(cv::Size frame) { return std::max(1, (std::min(frame.width, frame.height) + 150) / 300); }

void draw_overlay(cv::Mat& image, const events::Boxes& boxes, const std::string& caption) {
  for (const events::Box& box : boxes) {
    const cv::Rect pixels = pixels_of(box.area, image.size());
    if (!pixels.empty()) draw_box(image, pixels, line_width(image.size()));
  }
  if (!caption.empty()) draw_caption(image, caption);
}

}  // namespace lm::host::outputs
