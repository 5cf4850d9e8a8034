#include "host/events/objects/clutter_map.h"

#include <algorithm>
#include <cmath>

namespace lm::host::events::objects {
namespace {

using namespace std::chrono_literals;

constexpr auto kStep = 1s;               // of forgetting
constexpr double kFading = 120;          // seconds
constexpr double kFew = 0.25;            // seconds of clutter that do not count yet
constexpr double kMostly = 0.75;         // share of a box, or of the picture
constexpr double kSmallest = 1.0 / 128;  // boxes below this edge count as one size
constexpr std::size_t kHalf = 2;         // half octaves

int index(double share, int count) { return std::clamp(static_cast<int>(share * count), 0, count - 1); }

}  // namespace

std::size_t ClutterMap::size_of(const cv::Rect2d& box) {
  const double edge = std::max(std::sqrt(box.area()), kSmallest);
  return std::min(static_cast<std::size_t>(2 * std::log2(edge / kSmallest)), kSizes - 1);
}

bool ClutterMap::is_cluttered(const Seconds& place, std::size_t size) {
  const auto sum = [&](Kind kind) {
    const auto& seconds = place[static_cast<std::size_t>(kind)];
    double all = 0;
    for (std::size_t i = size < kHalf ? 0 : size - kHalf; i < kSizes; ++i) all += seconds[i];
    return all;
  };
  return sum(Kind::kClutter) > sum(Kind::kObject) + kFew;
}

template <typename Places, typename Call>
void ClutterMap::each_place(Places& places, const cv::Rect2d& box, Call call) const {
  const double wide = aspect_ / kAcross;
  const double high = 1.0 / kDown;
  for (int row = index(box.y, kDown); row <= index(box.br().y, kDown); ++row) {
    for (int column = index(box.x / aspect_, kAcross); column <= index(box.br().x / aspect_, kAcross);
         ++column) {
      const cv::Rect2d place(column * wide, row * high, wide, high);
      const int number = row * kAcross + column;
      call(places[static_cast<std::size_t>(number)], (place & box).area());
    }
  }
}

// Clutter does not come back to exactly the same pixels: its box reaches beyond itself by half, at most by
// half a place, and leaves out the places at its rim.
void ClutterMap::add(Kind kind, const cv::Rect2d& box, double seconds) {
  const std::size_t size = size_of(box);
  const auto add_to = [&](Seconds& place) {
    place[static_cast<std::size_t>(kind)][size] += static_cast<float>(seconds);
  };
  const cv::Size2d one(aspect_ / kAcross, 1.0 / kDown);
  const cv::Point2d margin(std::min(box.width, one.width) / 2, std::min(box.height, one.height) / 2);
  const cv::Rect2d enlarged(box.tl() - margin, box.br() + margin);
  const double rim = std::min(enlarged.area(), one.area()) / 2;
  each_place(places_, enlarged, [&](Seconds& place, double area) {
    if (area >= rim) add_to(place);
  });
  const cv::Point2d centre = (box.tl() + box.br()) / 2;
  const int area = index(centre.y, kAreas) * kAreas + index(centre.x / aspect_, kAreas);
  add_to(areas_[static_cast<std::size_t>(area)]);
}

void ClutterMap::pass(std::chrono::microseconds time) {
  if (time - faded_ < kStep) return;
  const auto factor =
      static_cast<float>(std::exp(-std::chrono::duration<double>(time - faded_).count() / kFading));
  faded_ = time;
  const auto fade = [factor](Seconds& place) {
    for (auto& sizes : place) {
      for (float& seconds : sizes) seconds *= factor;
    }
  };
  std::ranges::for_each(places_, fade);
  std::ranges::for_each(areas_, fade);
}

bool ClutterMap::is_everywhere(std::size_t size) const {
  const auto count =
      std::ranges::count_if(areas_, [size](const Seconds& area) { return is_cluttered(area, size); });
  return static_cast<double>(count) > kMostly * static_cast<double>(areas_.size());
}

bool ClutterMap::expects_clutter(const cv::Rect2d& box) const {
  const std::size_t size = size_of(box);
  if (is_weather()) return is_everywhere(size);
  double cluttered = 0;
  double all = 0;
  each_place(places_, box, [&](const Seconds& place, double area) {
    if (is_cluttered(place, size)) cluttered += area;
    all += area;
  });
  return cluttered > kMostly * all;
}

}  // namespace lm::host::events::objects
