#include "host/detector/light_filter.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <utility>

#include "host/detector/lit.h"
#include "host/detector/masks.h"

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

// Pixels are those of the half size.
constexpr int kCell = Ground::kCell;
constexpr int kGroundAround = 4;        // of the ground around a box; a multiple of kCell
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
// Between two looks at objects without light.
constexpr microseconds kUnseen = 400ms;
constexpr microseconds kBack = 300ms;  // in which light that is gone may be back

int up(int value) { return (value + kCell - 1) / kCell * kCell; }
int down(int value) { return value / kCell * kCell; }

// The box and some ground around it, in whole cells but for the frame's right and lower border.
cv::Rect area_around(const cv::Rect& box, const cv::Size& half) {
  const cv::Point from(down(box.x / 2) - kGroundAround, down(box.y / 2) - kGroundAround);
  const cv::Point to(up((box.x + box.width + 1) / 2) + kGroundAround,
                     up((box.y + box.height + 1) / 2) + kGroundAround);
  return cv::Rect(from, to) & cv::Rect({}, half);
}

cv::Rect doubled(const cv::Rect& area) { return {2 * area.x, 2 * area.y, 2 * area.width, 2 * area.height}; }

// The cells that a box of the frame touches.
cv::Rect cells_over(const cv::Rect& box) {
  constexpr int kSide = 2 * kCell;
  return {cv::Point(box.x / kSide, box.y / kSide),
          cv::Point((box.x + box.width) / kSide + 1, (box.y + box.height) / kSide + 1)};
}

// At half the size: what is set in at least half of its pixels.
cv::Mat half_of_mask(const cv::Mat& mask) {
  cv::Mat half;
  cv::resize(mask, half, mask.size() / 2, 0, 0, cv::INTER_AREA);
  cv::threshold(half, half, 127, 255, cv::THRESH_BINARY);
  return half;
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
  const ConnectedParts parts = connected_parts(left, Touching::kCorners);
  std::vector<int> own(parts.areas.size());  // pixels of each part
  for (const Run& run : parts.runs) own[static_cast<std::size_t>(run.part)] += count_in(run, known);
  std::vector<cv::Rect> places;
  std::vector<bool> is_object(own.size());
  for (std::size_t i = 0; i < own.size(); ++i) {
    const int area = parts.areas[i];
    const bool large = area >= std::max<double>(kFewestLeft, kSmallestLeft * light);
    is_object[i] = large && (own[i] >= kOwn * area || area > 2 * light);
    if (is_object[i]) places.push_back(parts.boxes[i]);
  }
  for (const Run& run : parts.runs) {
    if (!is_object[static_cast<std::size_t>(run.part)]) set(left, run, 0);
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

// A frame that is looked at.
struct LightFilter::View {
  const cv::Mat& frame;
  microseconds time;
  double sigma;
  const Foreground& foreground;
  cv::Mat ages;   // the next ones
  cv::Mat moves;  // of the cells, 255 where the ground is not learned
  float elapsed;  // seconds since the last one
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
  left = dilated(eroded(eroded(dilated(left))));  // without holes and specks
  const std::vector<cv::Rect> places = objects_in(left(inside), part.parts.object(inside), light);
  part.object = left;
  std::vector<cv::Rect> boxes;
  boxes.reserve(places.size());
  for (const cv::Rect& place : places) boxes.push_back(place + inside.tl() + part.area.tl());
  const cv::Size half = ground_.picture().size();
  join(boxes, static_cast<int>(kLeftGap * std::max(half.width, half.height)));
  for (cv::Rect& one : boxes)
    one = cv::Rect(2 * one.x - 1, 2 * one.y - 1, 2 * one.width + 2, 2 * one.height + 2) & box;
  if (boxes.size() == 1 && boxes[0].width >= kWhole * box.width && boxes[0].height >= kWhole * box.height)
    return {box};
  return boxes;
}

// Counts the time in which there was light, and keeps the ground there from being learned.
void LightFilter::remember(const Part& part, View& view) const {
  for (int y = 0; y < part.area.height; ++y) {
    const auto* foreground = part.foreground.ptr<std::uint8_t>(y);
    const auto* object = part.object.ptr<std::uint8_t>(y);
    const int row = (part.area.y + y) / kCell;
    const auto* before = ages_.ptr<float>(row);
    auto* age = view.ages.ptr<float>(row);
    auto* moves = view.moves.ptr<std::uint8_t>(row);
    for (int x = 0; x < part.area.width; ++x) {
      if (foreground[x] == 0 || object[x] != 0) continue;
      const int column = (part.area.x + x) / kCell;
      age[column] = before[column] + view.elapsed;
      moves[column] = 255;
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
  stays &= ~dilated(part.object);
  GhostPart found{doubled(part.area), {}};
  cv::resize(stays, found.mask, found.area.size(), 0, 0, cv::INTER_NEAREST);
  return found;
}

// Whether it was looked at lately and is an object without light.
bool LightFilter::is_plain(const cv::Rect& box, microseconds time) {
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
  const cv::Rect area = area_around(box, ground_.picture().size());
  Part part{area, half_of_mask(view.foreground(doubled(area))), {}, {}};
  const cv::Mat ground = ground_.picture()(area).clone();  // copied row by row: it is far from the processor
  part.parts = parts_of(half_sized(view.frame, area), ground, part.foreground, view.sigma);
  std::vector<cv::Rect> left = without_light(part, box);
  const bool has_light = left.size() != 1 || left.front() != box;
  const std::vector<cv::Rect> objects = left;
  if (left.empty() && was_object(box)) {
    left = {box};
    part.object = part.foreground;
  }
  add_objects(objects, has_light ? view.time : last_light(box), view.time);
  if (part.object.data == part.foreground.data) return left;
  remember(part, view);
  GhostPart found = stayed(part, view.ages);
  if (!found.mask.empty()) stays.push_back(std::move(found));
  return left;
}

// When there was light in this place, as far as it is remembered.
microseconds LightFilter::last_light(const cv::Rect& box) const {
  microseconds last = microseconds::min();
  for (const Object& object : objects_) {
    if ((object.box & box).area() > 0) last = std::max(last, object.light);
  }
  return last;
}

// Where there was light it may be back in the next frame.
void LightFilter::add_objects(const std::vector<cv::Rect>& boxes, microseconds light, microseconds time) {
  const bool soon = light >= time - kBack;
  for (const cv::Rect& box : boxes) objects_.push_back({box, time, soon ? time : time + kUnseen, light});
}

LightFilter::Result LightFilter::look(const cv::Mat& frame, microseconds time,
                                      const std::vector<cv::Rect>& boxes, double sigma,
                                      const Foreground& foreground) {
  const cv::Size half = half_of(frame.size());
  const float elapsed = std::chrono::duration<float>(time - last_).count();
  last_ = time;
  if (ages_.empty()) ages_ = cv::Mat::zeros(Ground::cells_of(half), CV_32F);
  const cv::Size cells = ages_.size();
  View view{frame,  time, sigma, foreground, cv::Mat::zeros(cells, CV_32F), cv::Mat::zeros(cells, CV_8U),
            elapsed};
  std::erase_if(objects_, [&](const Object& object) { return time - object.seen > kRemembered; });
  Result result;
  for (const cv::Rect& box : boxes) {
    if (ground_.picture().empty() || box.width < 2 || box.height < 2 || is_plain(box, time)) {
      result.boxes.push_back({box});
      continue;
    }
    result.boxes.push_back(examine(view, box, result.parts));
  }
  ages_ = view.ages;
  if (!ground_.is_due(time)) return result;
  for (const std::vector<cv::Rect>& left : result.boxes) {
    for (const cv::Rect& box : left) view.moves(cells_over(box) & cv::Rect({}, cells)).setTo(255);
  }
  ground_.learn(frame, time, view.moves);
  return result;
}

}  // namespace lm::host::detector
