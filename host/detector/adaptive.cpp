#include "host/detector/adaptive.h"

#include <json/json.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <opencv2/imgproc.hpp>
#include <string_view>

#include "host/base/failure.h"
#include "host/detector/adapt.h"
#include "host/detector/analysis_size.h"

namespace lm::host::detector {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// Once the noise is known, two successive frames of so many are compared.
constexpr std::int64_t kSeldom = 6;

// Where the noise asks for the least sensitivity, the picture is smoothed instead: that leaves some 40 % of
// noise that neighbours do not share, for which this sensitivity is enough.
constexpr int kLeastSensitivity = 1;
constexpr int kSmoothedSensitivity = 3;

cv::Mat smoothed(const cv::Mat& picture) {
  cv::Mat smooth;
  cv::GaussianBlur(picture, smooth, {3, 3}, 0);
  return smooth;
}

constexpr double kUsualNoise = 2;  // grey levels, before it is known

}  // namespace

Adaptive::Adaptive(const Document& document, cv::Size analysed)
    : analysed_(analysed),
      regions_(document.text),
      chooses_sensitivity_(!sets(readDocument(document.text), "sensitivity")),
      chooses_peel_(!sets(readDocument(document.text), "peel")),
      detector_(made(document)) {}

lightmotion::Detector Adaptive::made(const Document& document) const {
  const std::string text =
      Json::writeString(Json::StreamWriterBuilder(), completed(readDocument(document.text)));
  try {
    return {text, analysed_.width, analysed_.height, LIGHTMOTION_FORMAT_BGR};
  } catch (const lightmotion::Error& error) {
    throw base::Failure(base::kRefused, about(document, error.what()));
  }
}

void Adaptive::restart() {
  detector_.reset();
  ghosts_.forget();
  light_.forget();
  noise_.interrupt();
  clutter_.interrupt();
}

Boxes Adaptive::process(const cv::Mat& image, std::int64_t stated) {
  cv::Mat picture = resized(image, analysed_);
  const microseconds time = milliseconds(stated);
  measure(picture, time);
  if (smooths()) picture = smoothed(picture);
  Boxes boxes;
  std::vector<cv::Rect> outlines;
  for (const lightmotion_box& found : detector_.process(picture.data, picture.step, stated)) {
    const cv::Rect2d area(found.rel_x, found.rel_y, found.rel_width, found.rel_height);
    boxes.push_back({.area = clipped(area), .regions = names_of(found), .examined = true});
    outlines.emplace_back(found.x, found.y, found.width, found.height);
  }
  take_back(picture, time, outlines);
  boxes = without_light(picture, time, boxes, outlines);
  if (chooses_peel_ && clutter_.update(outlines, time)) apply();
  return boxes;
}

Boxes Adaptive::without_light(const cv::Mat& picture, microseconds time, const Boxes& boxes,
                              const std::vector<cv::Rect>& outlines) {
  const double noise = noise_.sigma().value_or(kUsualNoise);
  const LightFilter::Result result =
      light_.look(picture, time, outlines, noise, [this](const cv::Rect& area) { return foreground(area); });
  for (const GhostPart& part : result.parts) relearn(part);
  Boxes left;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const std::vector<cv::Rect>& parts = result.boxes[i];
    if (parts.empty() || parts.front() == outlines[i]) {
      left.push_back(boxes[i]);
      left.back().by_light = parts.empty();
      continue;
    }
    for (const cv::Rect& part : parts) left.push_back(part_of(boxes[i], part));
  }
  return left;
}

// Its regions are those of the box that the part overlaps.
Box Adaptive::part_of(const Box& box, const cv::Rect& part) const {
  const double width = analysed_.width;
  const double height = analysed_.height;
  Box smaller = box;
  smaller.area = clipped({part.x / width, part.y / height, part.width / width, part.height / height});
  if (box.regions.size() < 2) return smaller;
  const std::vector<std::string> touched = regions_.touched(smaller.area);
  std::erase_if(smaller.regions,
                [&](const std::string& name) { return std::ranges::find(touched, name) == touched.end(); });
  if (smaller.regions.empty()) smaller.regions = box.regions;
  return smaller;
}

void Adaptive::measure(const cv::Mat& picture, microseconds time) {
  const std::int64_t turn = frames_++ % kSeldom;
  const bool known = noise_.sigma().has_value();
  if (known && turn == 0) noise_.interrupt();
  if (known && turn > 1) return;
  noise_.add(picture, time);
  const std::optional<double> sigma = noise_.sigma();
  if (sigma && rule_.update(*sigma, time)) apply();
}

bool Adaptive::smooths() const { return chooses_sensitivity_ && rule_.sensitivity() == kLeastSensitivity; }

int Adaptive::sensitivity() const { return smooths() ? kSmoothedSensitivity : rule_.sensitivity(); }

void Adaptive::apply() {
  std::string changes;
  if (chooses_sensitivity_) changes += "\"sensitivity\": " + std::to_string(sensitivity());
  if (chooses_peel_)
    changes += (changes.empty() ? "\"peel\": " : ", \"peel\": ") + std::to_string(clutter_.peel());
  if (changes.empty()) return;
  detector_.change("{" + changes + "}");
  if (told_) told_(chosen());
}

cv::Mat Adaptive::foreground(const cv::Rect& area) const {
  const auto [x, y, width, height] = area;
  cv::Mat part(area.size(), CV_8U);
  lightmotion_foreground_part(detector_.get(), x, y, width, height, part.data, part.step);
  return part;
}

LearnedPictures Adaptive::learned(const cv::Rect& area) const {
  const auto [x, y, width, height] = area;
  cv::Mat background(area.size(), CV_8UC3);
  lightmotion_background_part(detector_.get(), x, y, width, height, background.data, background.step);
  return {foreground(area), background};
}

void Adaptive::take_back(const cv::Mat& picture, microseconds time, const std::vector<cv::Rect>& boxes) {
  for (const GhostPart& part :
       ghosts_.look(picture, time, boxes, [this](const cv::Rect& area) { return learned(area); }))
    relearn(part);
}

void Adaptive::relearn(const GhostPart& part) {
  detector_.relearn(part.area.x, part.area.y, part.area.width, part.area.height, part.mask.data,
                    part.mask.step);
}

std::vector<std::string> Adaptive::names_of(const lightmotion_box& box) const {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < box.region_count; ++i) {
    const std::string_view name = detector_.region_name(box.regions[i]);
    if (std::ranges::find(names, name) == names.end()) names.emplace_back(name);
  }
  return names;
}

std::string Adaptive::chosen() const {
  std::array<char, 60> text{};
  std::snprintf(text.data(), text.size(), "analysed in %dx%d", analysed_.width, analysed_.height);
  std::string line = text.data();
  if (const std::optional<double> sigma = noise_.sigma()) {
    std::snprintf(text.data(), text.size(), ", noise %.1f", *sigma);
    line += text.data();
  }
  if (smooths()) line += ", smoothed";
  if (chooses_sensitivity_) line += ", sensitivity " + std::to_string(sensitivity());
  if (chooses_peel_) line += ", peel " + std::to_string(clutter_.peel());
  return line;
}

}  // namespace lm::host::detector
