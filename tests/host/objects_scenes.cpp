#include "tests/host/objects_scenes.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace scenes {
namespace {

const cv::Rect2d kFrame(0, 0, 1, 1);

// The standard library's distributions differ between implementations: this is the sum of twelve numbers of
// the generator, whose standard deviation is 1.
class Chance {
 public:
  explicit Chance(std::uint32_t seed) : generator_(seed) {}
  double share() { return static_cast<double>(generator_()) / 4294967296.0; }
  double deviation() {
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += share();
    return sum;
  }

 private:
  std::mt19937 generator_;
};

cv::Rect2d shaken(const cv::Rect2d& box, double jitter, Chance& chance) {
  const double left = box.x + chance.deviation() * jitter * box.width;
  const double top = box.y + chance.deviation() * jitter * box.height;
  const double right = box.br().x + chance.deviation() * jitter * box.width;
  const double bottom = box.br().y + chance.deviation() * jitter * box.height;
  return {cv::Point2d(left, top), cv::Point2d(right, bottom)};
}

bool are_close(const cv::Rect2d& a, const cv::Rect2d& b, double distance) {
  const cv::Point2d margin(distance, distance);
  return !(cv::Rect2d(a.tl() - margin, a.br() + margin) & b).empty();
}

void merge_close(std::vector<cv::Rect2d>& boxes, double distance) {
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    for (std::size_t j = i + 1; j < boxes.size(); ++j) {
      if (!are_close(boxes[i], boxes[j], distance)) continue;
      boxes[i] |= boxes[j];
      boxes.erase(boxes.begin() + static_cast<std::ptrdiff_t>(j));
      return merge_close(boxes, distance);
    }
  }
}

// Stops at `from` and goes on at `to`.
Motion pausing(const Motion& motion, double from, double to) {
  return [=](double time) { return motion(time < from ? time : std::max(from, time - (to - from))); };
}

const cv::Rect2d kPerson(0.05, 0.4, 0.06, 0.3);
const cv::Rect2d kCar(-0.2, 0.6, 0.2, 0.15);

cv::Rect2d at(double x, double y, const cv::Rect2d& shape) { return {x, y, shape.width, shape.height}; }

std::vector<cv::Rect2d> thirds(const cv::Rect2d& box, double time) {
  if (time > 0.3 && (time < 1.5 || time > 1.7)) return {box};
  const double third = box.width / 3;
  return {{box.x, box.y, third * 0.7, box.height},
          {box.x + third, box.y, third * 0.7, box.height * 0.8},
          {box.x + 2 * third, box.y, third, box.height}};
}

std::vector<Motion> street() {
  std::vector<Motion> walkers;
  for (int i = 0; i < 7; ++i) {
    const bool right = i % 2 == 0;
    const double speed = 0.08 + 0.012 * i;
    const cv::Rect2d start = at(right ? -0.06 : 1, 0.1 + 0.085 * i, {0, 0, 0.04, 0.16});
    walkers.push_back(walk(start, {right ? speed : -speed, 0.004 * (i - 3)}, 1.3 * i, 60));
  }
  return walkers;
}

std::vector<Scene> make_all() {
  const Motion right = walk(at(0.05, 0.4, kPerson), {0.15, 0}, 0, 6);
  const Motion left = walk(at(0.9, 0.42, kPerson), {-0.14, 0}, 0, 6);
  std::vector<Scene> scenes;
  scenes.push_back({"one_walks", 6, {right}});
  scenes.push_back({"two_cross", 6, {right, left}});
  scenes.push_back({"one_overtakes",
                    7,
                    {walk(at(0.05, 0.4, kPerson), {0.13, 0}, 0, 7),
                     walk(at(0.25, 0.36, {0, 0, 0.05, 0.25}), {0.07, 0}, 0, 7)}});
  scenes.push_back({"behind_a_post", 6, {right}});
  scenes.back().moves = [](std::size_t, double time) { return time < 2.4 || time > 3; };
  scenes.push_back({"stands_still", 12, {pausing(right, 3, 7)}});
  scenes.back().moves = [](std::size_t, double time) { return time < 3 || time > 7; };
  scenes.push_back(
      {"leaves_and_another_enters",
       10,
       {walk(at(0.3, 0.4, kPerson), {-0.15, 0}, 0, 2.4), walk(at(-0.06, 0.4, kPerson), {0.15, 0}, 4, 10)}});
  scenes.push_back(
      {"cars_in_a_row",
       5,
       {walk(kCar, {0.4, 0}, 0, 5), walk(kCar, {0.4, 0}, 0.9, 5), walk(kCar, {0.38, 0}, 1.8, 5)}});
  scenes.push_back({"car_in_three_pieces", 4, {walk(kCar, {0.35, 0}, 0, 3.4)}});
  scenes.back().parts = thirds;
  scenes.push_back({"grows_from_a_part", 4, {walk(at(0.3, 0.3, kPerson), {0.05, 0}, 0, 4)}});
  scenes.back().parts = [](const cv::Rect2d& box, double time) {
    const double part = std::min(1.0, 0.3 + time);
    return std::vector<cv::Rect2d>{{box.x, box.y, box.width, box.height * part}};
  };
  scenes.push_back({"flickers", 6, {right, walk(at(0.9, 0.05, kPerson), {-0.1, 0}, 0, 6)}});
  scenes.back().jitter = 0.1;
  scenes.back().missed = 0.15;
  // The lower one touches the upper one from second 2 to second 6.
  const auto below = [](double time) {
    return std::optional<cv::Rect2d>({0.2 + 0.07 * time, 0.63 - 0.06 * std::min(time, 8 - time), 0.06, 0.2});
  };
  scenes.push_back({"two_meet_and_part", 8, {walk({0.2, 0.3, 0.06, 0.2}, {0.07, 0}, 0, 8), below}});
  scenes.push_back({"street", 16, street()});
  return scenes;
}

}  // namespace

Motion walk(const cv::Rect2d& start, cv::Point2d velocity, double from, double to) {
  return [=](double time) -> std::optional<cv::Rect2d> {
    const cv::Rect2d box = (start + velocity * (time - from)) & kFrame;
    if (time < from || time > to || box.empty()) return std::nullopt;
    return box;
  };
}

Played play(const Scene& scene, double rate, std::uint32_t seed) {
  Chance chance(seed);
  Played played;
  for (int frame = 0; frame < scene.seconds * rate; ++frame) {
    const double time = frame / rate;
    played.times.emplace_back(std::llround(time * 1e6));
    auto& truth = played.truth.emplace_back();
    auto& boxes = played.boxes.emplace_back();
    for (std::size_t i = 0; i < scene.objects.size(); ++i) {
      const std::optional<cv::Rect2d> place = scene.objects[i](time);
      if (!place || (scene.moves && !scene.moves(i, time)) || chance.share() < scene.missed) continue;
      truth.push_back({static_cast<std::int64_t>(i), *place});
      for (const cv::Rect2d& part : scene.parts ? scene.parts(*place, time) : std::vector{*place}) {
        const cv::Rect2d box = shaken(part, scene.jitter, chance) & kFrame;
        if (!box.empty()) boxes.push_back(box);
      }
    }
    merge_close(boxes, scene.parts ? 0 : scene.merge);
  }
  return played;
}

const std::vector<Scene>& all() {
  static const std::vector<Scene> scenes = make_all();
  return scenes;
}

}  // namespace scenes
