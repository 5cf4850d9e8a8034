#include "host/events/objects/track.h"

#include <algorithm>
#include <cmath>

namespace lm::host::events::objects {
namespace {

// In sizes of the object, because what is near moves farther in the picture.
constexpr double kSpeed = 3;           // per second, standard deviation before it is known: people and cars
constexpr double kAcceleration = 1.5;  // change of the speed in a second, standard deviation
constexpr double kGrowth = 0.5;        // the same of the size
constexpr double kJitter = 0.15;       // of a box's centre, standard deviation
constexpr double kSizeJitter = 0.15;

constexpr double kGate = 16;       // four standard deviations, squared
constexpr double kInside = 0.5;    // share of the smaller in the larger that makes them one object
constexpr double kMostTimes = 6;   // ratio of areas without it
constexpr double kRestart = 0.3;   // overlap below which the size has jumped
constexpr double kLostCost = 0.3;  // what was seen in the frame before goes first
constexpr double kSizeCost = 0.2;  // for a ratio of areas of e
constexpr double kSlowDown = 1;  // seconds in which a lost object loses most of its speed: after that, a new
                                 // box must be near it
constexpr double kReach = 0.75;  // how near, in its sizes: what comes into view again has moved on

double squared(double value) { return value * value; }

double side(double length) { return std::max(length, 1e-3); }

double overlap(const cv::Rect2d& a, const cv::Rect2d& b) {
  const double common = (a & b).area();
  return common / (a.area() + b.area() - common);
}

bool one_holds_other(const cv::Rect2d& a, const cv::Rect2d& b) {
  return (a & b).area() >= kInside * std::min(a.area(), b.area());
}

// Between the centres.
double distance(const cv::Rect2d& a, const cv::Rect2d& b) {
  return cv::norm((a.tl() + a.br() - b.tl() - b.br()) * 0.5);
}

// One minus the overlap, plus the distance of the centres in relation to the diagonal around both, squared:
// DIoU, Zheng et al. 2020. Unlike overlap alone it also ranks boxes that do not touch.
double mismatch(const cv::Rect2d& a, const cv::Rect2d& b) {
  const cv::Rect2d around = a | b;
  const cv::Point2d apart = (a.tl() + a.br() - b.tl() - b.br()) * 0.5;
  return 1 - overlap(a, b) + apart.dot(apart) / (squared(around.width) + squared(around.height));
}

std::array<CoordinateFilter, 4> filters_at(const cv::Rect2d& box) {
  const double size = std::sqrt(side(box.width) * side(box.height));
  const auto at = [size](double value, double jitter, double speed) {
    return CoordinateFilter(value, squared(jitter * size), squared(speed * size));
  };
  return {at(box.x + box.width / 2, kJitter, kSpeed), at(box.y + box.height / 2, kJitter, kSpeed),
          at(side(box.width), kSizeJitter, kGrowth), at(side(box.height), kSizeJitter, kGrowth)};
}

}  // namespace

double share_within(const cv::Rect2d& part, const cv::Rect2d& whole) {
  return part.empty() ? 0 : (part & whole).area() / part.area();
}

Track::Track(const cv::Rect2d& box, std::chrono::microseconds time)
    : filters_(filters_at(box)), first_(time), seen_(time), last_box_(box) {}

cv::Rect2d Track::box() const {
  const double width = side(filters_[2].value());
  const double height = side(filters_[3].value());
  return {filters_[0].value() - width / 2, filters_[1].value() - height / 2, width, height};
}

double Track::size() const { return std::sqrt(side(filters_[2].value()) * side(filters_[3].value())); }

void Track::predict(double seconds) {
  const bool lost = state_ == State::kLost;
  const double noise = lost ? 0 : squared(kAcceleration * size());
  const double growth = lost ? 0 : squared(kGrowth * size());
  for (std::size_t i = 0; i < filters_.size(); ++i) {
    if (lost) filters_[i].slow_down(std::exp(-seconds / kSlowDown));
    if (i >= 2 && state_ != State::kSeen) filters_[i].slow_down(0);
    filters_[i].predict(seconds, i < 2 ? noise : growth);
  }
}

void Track::seen(State state, std::chrono::microseconds time) {
  if (state == State::kMerged && state_ != State::kMerged) merged_ = seen_;
  state_ = state;
  seen_ = time;
  lost_ = std::chrono::microseconds(0);
  lost_frames_ = 0;
}

void Track::correct(const cv::Rect2d& box, std::chrono::microseconds time) {
  if (overlap(this->box(), box) < kRestart && one_holds_other(this->box(), box)) {
    const std::array<CoordinateFilter, 4> fresh = filters_at(box);
    filters_[0].restart(fresh[0]);
    filters_[1].restart(fresh[1]);
    filters_[2] = fresh[2];
    filters_[3] = fresh[3];
  } else {
    const double jitter = squared(kJitter * size());
    const double size_jitter = squared(kSizeJitter * size());
    filters_[0].correct(box.x + box.width / 2, jitter);
    filters_[1].correct(box.y + box.height / 2, jitter);
    filters_[2].correct(box.width, size_jitter);
    filters_[3].correct(box.height, size_jitter);
  }
  last_box_ = box;
  seen(State::kSeen, time);
}

void Track::correct_within(const cv::Rect2d& box, const Edges& own, std::chrono::microseconds time) {
  const double jitter = squared(2 * kJitter * size());
  const auto correct = [&](CoordinateFilter& filter, double extent, double from, double to, bool low,
                           bool high) {
    if (low && high) filter.correct((from + to) / 2, jitter);
    if (low && !high) filter.correct(from + extent / 2, jitter);
    if (high && !low) filter.correct(to - extent / 2, jitter);
  };
  const cv::Point2d end = box.br();
  correct(filters_[0], filters_[2].value(), box.x, end.x, own.left, own.right);
  correct(filters_[1], filters_[3].value(), box.y, end.y, own.top, own.bottom);
  last_box_ = this->box();
  seen(State::kMerged, time);
}

void Track::lose(std::chrono::microseconds passed) {
  state_ = State::kLost;
  lost_ += passed;
  ++lost_frames_;
}

// Whether the box is near the estimated place or that of the last box.
bool Track::is_near(const cv::Rect2d& box) const {
  const double reach = kReach * size();
  return distance(this->box(), box) <= reach || distance(last_box_, box) <= reach;
}

bool Track::fits(const cv::Rect2d& box) const {
  const cv::Rect2d own = this->box();
  if (one_holds_other(own, box)) return true;
  const double times = own.area() / box.area();
  if (times > kMostTimes || times < 1 / kMostTimes) return false;
  if (std::chrono::duration<double>(lost_).count() > kSlowDown && !is_near(box)) return false;
  const double jitter = squared(kJitter * size());
  const double x = squared(box.x + box.width / 2 - filters_[0].value()) / (filters_[0].variance() + jitter);
  const double y = squared(box.y + box.height / 2 - filters_[1].value()) / (filters_[1].variance() + jitter);
  return x + y <= kGate;
}

std::optional<double> Track::cost(const cv::Rect2d& box) const {
  const bool lost = state_ == State::kLost;
  const bool back = lost && one_holds_other(last_box_, box);  // where it stopped
  if (!back && !fits(box)) return std::nullopt;
  const cv::Rect2d own = back ? last_box_ : this->box();
  return mismatch(own, box) + kSizeCost * std::abs(std::log(own.area() / box.area())) +
         (lost ? kLostCost : 0);
}

}  // namespace lm::host::events::objects
