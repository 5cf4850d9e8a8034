#include "host/detector/ghosts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <utility>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

constexpr auto kStands = 400ms;       // before the first look
constexpr auto kBetween = 100ms;      // looks
constexpr auto kLost = 300ms;         // after which a box is another one
constexpr auto kAgain = 5s;           // after which what was decided is looked at again
constexpr auto kMoves = 500ms;        // until it is looked at again if something moves in it
constexpr int kLooks = 5;             // after which it is decided
constexpr double kSame = 0.8;         // intersection over union of a box that stands still
constexpr double kGhost = -0.5;       // sum of these looks up to which it is a ghost
constexpr double kSure = 1.5;         // sum of fewer looks that decides, from two on
constexpr double kAlike = 0.6;        // of the texture: the same ground in another light
constexpr int kMoved = 15;            // grey levels between two smoothed pictures, more than noise
constexpr double kMovedPart = 0.01;   // of the pixels: something moves inside
constexpr int kSmallest = 30;         // pixels of a component that is looked at
constexpr int kAround = 8;            // pixels of the ground around a box that are looked at
constexpr int kMostPixels = 64 * 64;  // of a box that is looked at in the size of the frame

cv::Rect grown(const cv::Rect& box, int by, const cv::Size& frame) {
  return cv::Rect(box.x - by, box.y - by, box.width + 2 * by, box.height + 2 * by) & cv::Rect({}, frame);
}

// Twice, four times, ... smaller, so that the costs of a look do not grow with the box.
int reduction_of(const cv::Rect& box) {
  int times = 1;
  while (box.area() > kMostPixels * times * times) times *= 2;
  return times;
}

cv::Mat reduced(const cv::Mat& picture, int times, int interpolation) {
  if (times == 1) return picture;
  cv::Mat small;
  const cv::Size size(std::max(1, picture.cols / times), std::max(1, picture.rows / times));
  cv::resize(picture, small, size, 0, 0, interpolation);
  return small;
}

// In grey, without much of the noise.
cv::Mat smoothed(const cv::Mat& picture) {
  cv::Mat grey = picture;
  if (picture.channels() == 3) cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
  cv::Mat smooth;
  cv::GaussianBlur(grey, smooth, {5, 5}, 0);
  return smooth;
}

cv::Mat smoothed(const cv::Mat& picture, int times) {
  return smoothed(reduced(picture, times, cv::INTER_AREA));
}

struct Slopes {
  cv::Mat x, y;  // CV_16S

  Slopes in(const cv::Rect& part) const { return {x(part), y(part)}; }
};

Slopes slopes_of(const cv::Mat& smooth) {
  Slopes slopes;
  cv::Sobel(smooth, slopes.x, CV_16S, 1, 0);
  cv::Sobel(smooth, slopes.y, CV_16S, 0, 1);
  return slopes;
}

// The slopes of a picture across the outline, summed up along it.
double across(const Slopes& outline, const Slopes& slopes) {
  std::int64_t sum = 0;
  for (int y = 0; y < slopes.x.rows; ++y) {
    const auto* outline_x = outline.x.ptr<std::int16_t>(y);
    const auto* outline_y = outline.y.ptr<std::int16_t>(y);
    const auto* slope_x = slopes.x.ptr<std::int16_t>(y);
    const auto* slope_y = slopes.y.ptr<std::int16_t>(y);
    for (int x = 0; x < slopes.x.cols; ++x)
      sum += std::abs(outline_x[x] * slope_x[x] + outline_y[x] * slope_y[x]);
  }
  return static_cast<double>(sum);
}

// As edges_in_picture.
double edges_in(const Slopes& now, const Slopes& before, const cv::Mat& mask) {
  cv::Mat smooth;
  cv::GaussianBlur(mask, smooth, {}, 1.5);
  const Slopes outline = slopes_of(smooth);
  const double in_picture = across(outline, now);
  const double in_background = across(outline, before);
  const double all = in_picture + in_background;
  return all > 0 ? (in_picture - in_background) / all : 0;
}

// As texture_kept.
double texture_in(const Slopes& now, const Slopes& before, const cv::Mat& mask) {
  cv::Mat inside;
  // Its outline may be that of light and shadow.
  cv::erode(mask, inside, cv::Mat::ones(5, 5, CV_8U), {-1, -1}, 1, cv::BORDER_CONSTANT, cv::Scalar(0));
  if (cv::countNonZero(inside) < kSmallest) return 0;
  std::int64_t common = 0;
  std::int64_t of_now = 0;
  std::int64_t of_before = 0;
  for (int y = 0; y < inside.rows; ++y) {
    const unsigned char* chosen = inside.ptr(y);
    for (const auto& [a, b] : {std::pair(&now.x, &before.x), std::pair(&now.y, &before.y)}) {
      const auto* slope = a->ptr<std::int16_t>(y);
      const auto* slope_before = b->ptr<std::int16_t>(y);
      for (int x = 0; x < inside.cols; ++x) {
        if (chosen[x] == 0) continue;
        const std::int64_t is = slope[x];
        const std::int64_t was = slope_before[x];
        common += is * was;
        of_now += is * is;
        of_before += was * was;
      }
    }
  }
  const double all = std::sqrt(static_cast<double>(of_now) * static_cast<double>(of_before));
  return all > 0 ? static_cast<double>(common) / all : 0;
}

struct Components {
  cv::Mat labels;                // of the area
  std::vector<cv::Rect> around;  // of each that is looked at, some ground included
  std::vector<int> label;
};

// The components of the foreground that touch `inside`, without holes of noise.
Components components_of(const cv::Mat& foreground, const cv::Rect& inside) {
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
    if (of[cv::CC_STAT_AREA] < kSmallest || (place & inside).empty()) continue;
    found.around.push_back(grown(place, kAround, foreground.size()));
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
  return edges_in(slopes_of(smoothed(picture)), slopes_of(smoothed(background)), mask);
}

double texture_kept(const cv::Mat& picture, const cv::Mat& background, const cv::Mat& mask) {
  return texture_in(slopes_of(smoothed(picture)), slopes_of(smoothed(background)), mask);
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

// Whether something moves in the box since the last time. `now`: around it.
bool Ghosts::moves(Still& still, const cv::Mat& now) {
  const cv::Mat before = std::exchange(still.before, now);
  if (before.empty()) return false;
  cv::Mat difference;
  cv::absdiff(now, before, difference);
  return cv::countNonZero(difference > kMoved) > kMovedPart * static_cast<double>(now.total());
}

// The components of a box whose edges have been in the background. Sets whether the look has decided.
GhostPart Ghosts::ghosts_in(Still& still, const cv::Rect& area, const cv::Mat& picture,
                            const Learned& learned_in) {
  const int times = reduction_of(still.box);
  const LearnedPictures learned = learned_in(area);
  const cv::Mat foreground = reduced(learned.foreground, times, cv::INTER_NEAREST);
  const cv::Rect box = still.box - area.tl();
  const Components found =
      components_of(foreground, {box.x / times, box.y / times, box.width / times, box.height / times});
  const Slopes now = slopes_of(picture);
  const Slopes before = slopes_of(smoothed(learned.background, times));
  if (still.looks++ == 0) still.evidence = cv::Mat::zeros(foreground.size(), CV_32F);
  cv::Mat ghosts;
  still.decided = true;
  for (std::size_t i = 0; i < found.label.size(); ++i) {
    const cv::Rect& around = found.around[i];
    const cv::Mat mask = found.labels(around) == found.label[i];
    const Slopes shown = now.in(around);
    const Slopes hidden = before.in(around);
    const bool light = texture_in(shown, hidden, mask) >= kAlike;
    const double edges = light ? -1 : edges_in(shown, hidden, mask);
    cv::Mat evidence = still.evidence(around);
    cv::add(evidence, cv::Scalar(edges), evidence, mask);
    const double sum = cv::mean(evidence, mask)[0];
    const bool decided = std::abs(sum) >= kSure || still.looks == kLooks;
    still.decided = still.decided && decided;
    if (!decided || edges >= 0 || sum > kGhost) continue;
    if (ghosts.empty()) ghosts = cv::Mat::zeros(foreground.size(), CV_8U);
    ghosts(around) |= mask;
  }
  GhostPart part{area, {}};
  if (ghosts.empty()) return part;
  cv::resize(ghosts, part.mask, area.size(), 0, 0, cv::INTER_NEAREST);
  // Their rims have samples of both, because neighbours are learned too.
  cv::dilate(part.mask, part.mask, cv::Mat::ones(5, 5, CV_8U));
  return part;
}

std::vector<GhostPart> Ghosts::look(const cv::Mat& picture, microseconds time,
                                    const std::vector<cv::Rect>& boxes, const Learned& learned) {
  follow(time, boxes);
  std::vector<GhostPart> parts;
  for (Still& still : still_) {
    if (still.seen != time || time < still.next) continue;
    const cv::Rect area = grown(still.box, kAround, picture.size());
    const cv::Mat now = smoothed(picture(area), reduction_of(still.box));
    if (moves(still, now)) {
      still.looks = 0;
      still.next = time + kMoves;
      continue;
    }
    still.next = time + kBetween;
    GhostPart part = ghosts_in(still, area, now, learned);
    if (!part.mask.empty()) parts.push_back(std::move(part));
    if (!still.decided) continue;
    still.looks = 0;
    still.before.release();
    still.next = time + kAgain;
  }
  return parts;
}

}  // namespace lm::host::detector
