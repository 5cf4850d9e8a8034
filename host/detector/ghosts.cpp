#include "host/detector/ghosts.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <utility>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

constexpr auto kStands = 500ms;      // before the first look
constexpr auto kBetween = 100ms;     // looks
constexpr auto kLost = 300ms;        // after which a box is another one
constexpr auto kAgain = 5s;          // after which what was decided is looked at again
constexpr auto kMoves = 500ms;       // until it is looked at again if something moves in it
constexpr int kLooks = 5;            // for a decision
constexpr double kSame = 0.7;        // intersection over union of a box that stands still
constexpr double kGhost = -0.1;      // mean of the looks up to which it is a ghost
constexpr double kAlike = 0.6;       // of the texture: the same ground in another light
constexpr int kMoved = 20;           // grey levels between two smoothed pictures, more than noise
constexpr double kMovedPart = 0.01;  // of the pixels: something moves inside
constexpr int kSmallest = 30;        // pixels of a component that is looked at
constexpr int kAround = 8;           // pixels of the ground around a box that are looked at

cv::Rect grown(const cv::Rect& box, int by, const cv::Size& frame) {
  return cv::Rect(box.x - by, box.y - by, box.width + 2 * by, box.height + 2 * by) & cv::Rect({}, frame);
}

struct Slopes {
  cv::Mat x, y;  // CV_32F, as many channels as the picture
};

Slopes slopes_of(const cv::Mat& picture, double smoothing) {
  cv::Mat smooth;
  cv::GaussianBlur(picture, smooth, {}, smoothing);
  Slopes slopes;
  cv::Sobel(smooth, slopes.x, CV_32F, 1, 0);
  cv::Sobel(smooth, slopes.y, CV_32F, 0, 1);
  return slopes;
}

// The slope of the picture across the outline, summed up along it.
double across(const Slopes& outline, const cv::Mat& picture) {
  const Slopes slopes = slopes_of(picture, 1);
  const int channels = picture.channels();
  double sum = 0;
  for (int y = 0; y < picture.rows; ++y) {
    const auto* outline_x = outline.x.ptr<float>(y);
    const auto* outline_y = outline.y.ptr<float>(y);
    const auto* slope_x = slopes.x.ptr<float>(y);
    const auto* slope_y = slopes.y.ptr<float>(y);
    for (int x = 0; x < picture.cols; ++x) {
      for (int c = 0; c < channels; ++c) {
        const int at = x * channels + c;
        sum += std::abs(outline_x[x] * slope_x[at] + outline_y[x] * slope_y[at]);
      }
    }
  }
  return sum;
}

struct Components {
  cv::Mat labels;                // of the area
  std::vector<cv::Rect> around;  // of each that is looked at, some ground included
  std::vector<int> label;
};

// The components of the foreground in `area` that lie in the box, without holes of noise.
Components components_of(const cv::Mat& foreground, const cv::Rect& area, const cv::Rect& box) {
  cv::Mat closed;
  cv::morphologyEx(foreground, closed, cv::MORPH_CLOSE, cv::Mat::ones(5, 5, CV_8U));
  Components found;
  cv::Mat figures;
  cv::Mat centres;
  const int count = cv::connectedComponentsWithStats(closed, found.labels, figures, centres, 4, CV_32S);
  for (int label = 1; label < count; ++label) {
    const int* of = figures.ptr<int>(label);
    const cv::Rect place(of[cv::CC_STAT_LEFT], of[cv::CC_STAT_TOP], of[cv::CC_STAT_WIDTH],
                         of[cv::CC_STAT_HEIGHT]);
    if (of[cv::CC_STAT_AREA] < kSmallest || (place & (box - area.tl())).empty()) continue;
    found.around.push_back(grown(place, kAround, area.size()));
    found.label.push_back(label);
  }
  return found;
}

}  // namespace

double overlap(const cv::Rect& a, const cv::Rect& b) {
  const double common = (a & b).area();
  return common / (static_cast<double>(a.area()) + b.area() - common);
}

double edges_in_picture(const cv::Mat& picture, const cv::Mat& background, const cv::Mat& mask) {
  cv::Mat inside;
  mask.convertTo(inside, CV_32F);
  const Slopes outline = slopes_of(inside, 1.5);
  const double in_picture = across(outline, picture);
  const double in_background = across(outline, background);
  const double all = in_picture + in_background;
  return all > 0 ? (in_picture - in_background) / all : 0;
}

double texture_kept(const cv::Mat& picture, const cv::Mat& background, const cv::Mat& mask) {
  cv::Mat inside;
  // Its outline may be that of light and shadow.
  cv::erode(mask, inside, cv::Mat::ones(5, 5, CV_8U), {-1, -1}, 1, cv::BORDER_CONSTANT, cv::Scalar(0));
  if (cv::countNonZero(inside) < kSmallest) return 0;
  const Slopes now = slopes_of(picture, 1);
  const Slopes before = slopes_of(background, 1);
  double common = 0;
  double of_now = 0;
  double of_before = 0;
  const int channels = picture.channels();
  for (int y = 0; y < picture.rows; ++y) {
    const unsigned char* chosen = inside.ptr(y);
    for (const auto& [a, b] : {std::pair(&now.x, &before.x), std::pair(&now.y, &before.y)}) {
      const auto* slope = a->ptr<float>(y);
      const auto* slope_before = b->ptr<float>(y);
      for (int i = 0; i < picture.cols * channels; ++i) {
        if (chosen[i / channels] == 0) continue;
        common += static_cast<double>(slope[i]) * slope_before[i];
        of_now += static_cast<double>(slope[i]) * slope[i];
        of_before += static_cast<double>(slope_before[i]) * slope_before[i];
      }
    }
  }
  const double all = std::sqrt(of_now * of_before);
  return all > 0 ? common / all : 0;
}

void Ghosts::follow(microseconds time, const std::vector<cv::Rect>& boxes) {
  for (const cv::Rect& box : boxes) {
    const auto same = std::max_element(still_.begin(), still_.end(), [&](const Still& a, const Still& b) {
      return overlap(a.box, box) < overlap(b.box, box);
    });
    if (same != still_.end() && overlap(same->box, box) >= kSame) {
      same->seen = time;
    } else {
      still_.push_back({box, time, time, time + kStands, {}, {}});
    }
  }
  std::erase_if(still_, [&](const Still& still) { return time - still.seen > kLost; });
}

// Whether something moves in the box since the last time.
bool Ghosts::moves(Still& still, const cv::Mat& picture) {
  cv::Mat now;
  cv::blur(picture(still.box), now, {3, 3});
  std::swap(now, still.before);
  if (now.empty()) return false;
  cv::Mat difference;
  cv::absdiff(now, still.before, difference);
  const cv::Mat moved = difference.reshape(1) > kMoved;
  return cv::countNonZero(moved) > kMovedPart * static_cast<double>(moved.total());
}

// The components of a box whose edges have been in the background.
GhostPart Ghosts::ghosts_in(Still& still, const cv::Mat& picture, const Learned& learned_in) {
  const cv::Rect area = grown(still.box, kAround, picture.size());
  const LearnedPictures learned = learned_in(area);
  const Components found = components_of(learned.foreground, area, still.box);
  if (still.looks++ == 0) still.evidence = cv::Mat::zeros(area.size(), CV_32F);
  GhostPart part{area, {}};
  for (std::size_t i = 0; i < found.label.size(); ++i) {
    const cv::Rect& around = found.around[i];
    const cv::Mat mask = found.labels(around) == found.label[i];
    const cv::Mat now = picture(area)(around);
    const cv::Mat before = learned.background(around);
    const bool light = texture_kept(now, before, mask) >= kAlike;
    const double edges = light ? -1 : edges_in_picture(now, before, mask);
    cv::Mat evidence = still.evidence(around);
    cv::add(evidence, cv::Scalar(edges), evidence, mask);
    const bool ghost = edges < 0 && cv::mean(evidence, mask)[0] <= kGhost * kLooks;
    if (still.looks < kLooks || !ghost) continue;
    if (part.mask.empty()) part.mask = cv::Mat::zeros(area.size(), CV_8U);
    part.mask(around) |= mask;
  }
  // Their rims have samples of both, because neighbours are learned too.
  if (!part.mask.empty()) cv::dilate(part.mask, part.mask, cv::Mat::ones(5, 5, CV_8U));
  return part;
}

std::vector<GhostPart> Ghosts::look(const cv::Mat& picture, microseconds time,
                                    const std::vector<cv::Rect>& boxes, const Learned& learned) {
  follow(time, boxes);
  std::vector<GhostPart> parts;
  for (Still& still : still_) {
    if (still.seen != time || time < still.next) continue;
    if (moves(still, picture)) {
      still.looks = 0;
      still.next = time + kMoves;
      continue;
    }
    still.next = time + kBetween;
    GhostPart part = ghosts_in(still, picture, learned);
    if (still.looks < kLooks) continue;
    still.looks = 0;
    still.before.release();
    still.next = time + kAgain;
    if (!part.mask.empty()) parts.push_back(std::move(part));
  }
  return parts;
}

}  // namespace lm::host::detector
