#include "host/detector/light_filter.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "host/detector/lit.h"

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;

// Pixels are those of the half size.
constexpr int kCell = 4;                // side
constexpr int kGroundAround = 8;        // of the ground around a box; a multiple of kCell
constexpr float kStays = 0.5F;          // seconds after which light is learned
constexpr double kLeastLight = 0.03;    // of the foreground in a box
constexpr double kSmallestLeft = 0.01;  // of the foreground in a box, for a part that is left
constexpr double kOwn = 0.2;            // of it that has colours or a texture of its own
constexpr int kFewestLeft = 12;         // pixels of it
constexpr double kLeftGap = 1.0 / 32;   // of the longer side: parts that are one thing
constexpr double kWhole = 0.9;          // of a box's width and height: nothing to be gained

constexpr auto kRemembered = 300ms;  // an object, in which its place is not only light
constexpr double kSameBox = 0.3;     // intersection over union of its place
constexpr double kSameObject = 0.5;  // ... of an object in two frames
// Between two looks at objects without light; at all in the same frame, because the foreground is copied.
constexpr std::chrono::microseconds kUnseen = 400ms;

int up(int value) { return (value + kCell - 1) / kCell * kCell; }
int down(int value) { return value / kCell * kCell; }

cv::Size cells_of(const cv::Size& half) { return {up(half.width) / kCell, up(half.height) / kCell}; }

// The box and some ground around it, in whole cells but for the frame's right and lower border.
cv::Rect area_around(const cv::Rect& box, const cv::Size& half) {
  const cv::Point from(down(box.x / 2) - kGroundAround, down(box.y / 2) - kGroundAround);
  const cv::Point to(up((box.x + box.width + 1) / 2) + kGroundAround,
                     up((box.y + box.height + 1) / 2) + kGroundAround);
  return cv::Rect(from, to) & cv::Rect({}, half);
}

bool are_close(const cv::Rect& a, const cv::Rect& b, int gap) {
  return a.x <= b.x + b.width + gap && b.x <= a.x + a.width + gap && a.y <= b.y + b.height + gap &&
         b.y <= a.y + a.height + gap;
}

void join(std::vector<cv::Rect>& boxes, int gap) {
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    for (std::size_t j = i + 1; j < boxes.size(); ++j) {
      if (!are_close(boxes[i], boxes[j], gap)) continue;
      boxes[i] |= boxes[j];
      boxes.erase(boxes.begin() + static_cast<std::ptrdiff_t>(j));
      j = i;
    }
  }
}

// The parts of `left` that are objects; erases the others. `light`: pixels of light around them.
std::vector<cv::Rect> objects_in(cv::Mat left, const cv::Mat& known, int light) {
  cv::Mat labels;
  cv::Mat figures;
  cv::Mat centres;
  const int count = cv::connectedComponentsWithStats(left, labels, figures, centres, 8, CV_32S);
  cv::Mat_<int> own(1, count, 0);  // pixels of each label
  for (int y = 0; y < labels.rows; ++y) {
    for (int x = 0; x < labels.cols; ++x) own(0, labels.at<int>(y, x)) += known.at<std::uint8_t>(y, x) / 255;
  }
  std::vector<cv::Rect> places;
  for (int label = 1; label < count; ++label) {
    const int* of = figures.ptr<int>(label);
    const int area = of[cv::CC_STAT_AREA];
    const bool large = area >= std::max<double>(kFewestLeft, kSmallestLeft * light);
    if (large && (own(0, label) >= kOwn * area || area > 2 * light)) {
      places.emplace_back(of[cv::CC_STAT_LEFT], of[cv::CC_STAT_TOP], of[cv::CC_STAT_WIDTH],
                          of[cv::CC_STAT_HEIGHT]);
    } else {
      left.setTo(0, labels == label);
    }
  }
  return places;
}

}  // namespace

// What is seen of a box.
struct LightFilter::Part {
  cv::Rect area;       // pixels of the half size
  cv::Mat foreground;  // of the area, 255 inside
  Parts parts;         // of the foreground
  cv::Mat object;      // what is left without light, 255 inside
};

// Sets what is left, and returns the boxes around it.
std::vector<cv::Rect> LightFilter::without_light(Part& part, const cv::Rect& box) const {
  const cv::Rect inside =
      (cv::Rect(box.x / 2, box.y / 2, (box.width + 1) / 2, (box.height + 1) / 2) & part.area) -
      part.area.tl();
  const int all = cv::countNonZero(part.foreground(inside));
  const int light = cv::countNonZero(part.parts.light(inside));
  part.object = part.foreground;
  if (light < kFewestLeft || light < kLeastLight * all) return {box};
  cv::Mat left = part.foreground & ~part.parts.light;
  cv::morphologyEx(left, left, cv::MORPH_CLOSE, cv::Mat::ones(3, 3, CV_8U));
  cv::morphologyEx(left, left, cv::MORPH_OPEN, cv::Mat::ones(3, 3, CV_8U));
  const std::vector<cv::Rect> places = objects_in(left(inside), part.parts.object(inside), light);
  part.object = left;
  std::vector<cv::Rect> boxes;
  boxes.reserve(places.size());
  for (const cv::Rect& place : places) boxes.push_back(place + inside.tl() + part.area.tl());
  const cv::Size half = ground_.levels().size();
  join(boxes, static_cast<int>(kLeftGap * std::max(half.width, half.height)));
  for (cv::Rect& one : boxes)
    one = cv::Rect(2 * one.x - 1, 2 * one.y - 1, 2 * one.width + 2, 2 * one.height + 2) & box;
  if (boxes.size() == 1 && boxes[0].width >= kWhole * box.width && boxes[0].height >= kWhole * box.height)
    return {box};
  return boxes;
}

// Counts the time in which there was light.
void LightFilter::remember(const Part& part, float elapsed, cv::Mat& ages) const {
  const cv::Mat light = part.foreground & ~part.object;
  for (int y = 0; y < part.area.height; ++y) {
    const auto* lit = light.ptr<std::uint8_t>(y);
    const int row = (part.area.y + y) / kCell;
    for (int x = 0; x < part.area.width; ++x) {
      if (lit[x] == 0) continue;
      const int column = (part.area.x + x) / kCell;
      ages.at<float>(row, column) = ages_.at<float>(row, column) + elapsed;
    }
  }
}

// Where it has stayed; the time starts again.
GhostPart LightFilter::stayed(const Part& part, cv::Mat& ages) {
  cv::Mat stays = cv::Mat::zeros(part.area.size(), CV_8U);
  bool any = false;
  for (int y = 0; y < part.area.height; ++y) {
    const auto* age = ages.ptr<float>((part.area.y + y) / kCell);
    for (int x = 0; x < part.area.width; ++x) {
      if (age[(part.area.x + x) / kCell] < kStays) continue;
      stays.at<std::uint8_t>(y, x) = 255;
      any = true;
    }
  }
  if (!any) return {};
  const cv::Rect cells(part.area.x / kCell, part.area.y / kCell, up(part.area.width) / kCell,
                       up(part.area.height) / kCell);
  cv::Mat of = ages(cells);
  of.setTo(0, of >= kStays);
  cv::Mat left;
  cv::dilate(part.object, left, cv::Mat::ones(3, 3, CV_8U));
  stays &= ~left;
  GhostPart found{{2 * part.area.x, 2 * part.area.y, 2 * part.area.width, 2 * part.area.height}, {}};
  cv::resize(stays, found.mask, found.area.size(), 0, 0, cv::INTER_NEAREST);
  return found;
}

// A frame that is looked at.
struct LightFilter::View {
  const cv::Mat& frame;
  std::chrono::microseconds time;
  double sigma;
  cv::Mat foreground;  // of the frame
  cv::Mat ages;        // the next ones
  cv::Mat moves;       // of the half size, 255 where the ground is not learned
  float elapsed;       // seconds since the last one
};

// Whether it was looked at lately and is an object without light.
bool LightFilter::is_plain(const cv::Rect& box, std::chrono::microseconds time) {
  for (Object& object : objects_) {
    if (time >= object.next || overlap(object.box, box) < kSameObject) continue;
    object.box = box;
    object.seen = time;
    return true;
  }
  return false;
}

// An object does not turn into light from one frame to the next.
bool LightFilter::was_object(const cv::Rect& box) const {
  return std::ranges::any_of(objects_,
                             [&](const Object& object) { return overlap(object.box, box) >= kSameBox; });
}

// What is left of a box. Adds to the ages and to what moves.
std::vector<cv::Rect> LightFilter::examine(View& view, const cv::Rect& box, std::vector<GhostPart>& stays) {
  const cv::Rect area = area_around(box, ground_.levels().size());
  Part part{area, half_sized(view.foreground, area) > 127, {}, {}};
  part.parts = parts_of(half_sized(view.frame, area), ground_.levels()(area), part.foreground, view.sigma);
  std::vector<cv::Rect> left = without_light(part, box);
  // Where there was light, it may be back in the next frame.
  const bool beside_light = std::ranges::any_of(objects_, [&](const Object& object) {
    return object.next == object.seen && (object.box & box).area() > 0;
  });
  const bool plain = !beside_light && left.size() == 1 && left.front() == box;
  const std::vector<cv::Rect> objects = left;
  if (left.empty() && was_object(box)) {
    left = {box};
    part.object = part.foreground;
  }
  for (const cv::Rect& one : objects)
    objects_.push_back({one, view.time, plain ? (view.time / kUnseen + 1) * kUnseen : view.time});
  remember(part, view.elapsed, view.ages);
  GhostPart found = stayed(part, view.ages);
  if (!found.mask.empty()) stays.push_back(std::move(found));
  if (!view.moves.empty()) view.moves(area) |= part.foreground & ~part.object;
  return left;
}

LightFilter::Result LightFilter::look(const cv::Mat& frame, std::chrono::microseconds time,
                                      const std::vector<cv::Rect>& boxes, double sigma,
                                      const Foreground& foreground) {
  const cv::Size half = half_of(frame.size());
  const float elapsed = std::chrono::duration<float>(time - last_).count();
  last_ = time;
  if (ages_.empty()) ages_ = cv::Mat::zeros(cells_of(half), CV_32F);
  View view{frame, time, sigma, {}, cv::Mat::zeros(ages_.size(), CV_32F), {}, elapsed};
  const bool learns = ground_.is_due(time);
  if (learns) view.moves = cv::Mat::zeros(half, CV_8U);
  std::erase_if(objects_, [&](const Object& object) { return time - object.seen > kRemembered; });
  Result result;
  for (const cv::Rect& box : boxes) {
    if (ground_.levels().empty() || box.width < 2 || box.height < 2 || is_plain(box, time)) {
      result.boxes.push_back({box});
      continue;
    }
    if (view.foreground.empty()) view.foreground = foreground();
    result.boxes.push_back(examine(view, box, result.parts));
  }
  ages_ = view.ages;
  if (!learns) return result;
  for (const std::vector<cv::Rect>& left : result.boxes) {
    for (const cv::Rect& box : left) {
      view.moves(cv::Rect(box.x / 2, box.y / 2, box.width / 2 + 1, box.height / 2 + 1) & cv::Rect({}, half))
          .setTo(255);
    }
  }
  ground_.learn(frame, time, view.moves);
  return result;
}

}  // namespace lm::host::detector
