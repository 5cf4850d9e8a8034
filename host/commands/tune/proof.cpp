#include "host/commands/tune/proof.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace lm::host::commands::tune {
namespace {

using std::chrono::microseconds;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kStep = 400'000;  // between two places of an object
constexpr double kEdge = 0.02;           // of the frame: closer boxes touch it
constexpr double kFar = 0.5;             // of the object's size, and of its way

// Where an object was; lengths in heights of the frame.
struct Place {
  cv::Point2d centre;
  double side = 0;  // the longer one of its box
};

struct Trace {
  Mover mover;  // as far as known
  std::vector<Place> places;
  std::int64_t next = 0;  // time of the next place

  // Objects that share a box with another one are there, but where is not known.
  void present(std::int64_t time, const cv::Rect2d& area) {
    mover.last = time;
    mover.left = area.x < kEdge || area.y < kEdge || area.x + area.width > 1 - kEdge ||
                 area.y + area.height > 1 - kEdge;
  }
};

Place place_of(const cv::Rect2d& area, double aspect) {
  return {{(area.x + area.width / 2) * aspect, area.y + area.height / 2},
          std::max(area.width * aspect, area.height)};
}

std::map<std::int64_t, Trace> traces_in(const Seen& seen) {
  std::map<std::int64_t, Trace> traces;
  for (const Look& look : seen.looks) {
    const auto trace = [&](std::int64_t id) -> Trace& {
      const auto [found, added] = traces.try_emplace(id);
      if (added) found->second.mover = {.id = id, .first = look.time};
      return found->second;
    };
    for (const MotionBox& box : look.boxes) {
      if (box.id == 0) continue;
      Trace& own = trace(box.id);
      own.present(look.time, box.area);
      for (const std::int64_t other : box.others) trace(other).present(look.time, box.area);
      if (look.time < own.next) continue;
      own.places.push_back(place_of(box.area, seen.aspect));
      own.next = look.time + kStep;
    }
  }
  return traces;
}

bool moves(const std::vector<Place>& places) {
  for (std::size_t from = 0; from < places.size(); ++from) {
    double way = 0;
    for (std::size_t to = from + 1; to < places.size(); ++to) {
      way += cv::norm(places[to].centre - places[to - 1].centre);
      const double distance = cv::norm(places[to].centre - places[from].centre);
      const double size = std::max(places[from].side, places[to].side);
      if (distance >= kFar * size && distance >= kFar * way) return true;
    }
  }
  return false;
}

struct Second {
  events::TimeSpan span;
  bool moving = false;
  bool quiet = true;
};

void look_at(const Seen& judge, std::vector<Second>& seconds) {
  const auto number = [&](std::int64_t time) {
    return static_cast<std::size_t>(std::clamp<std::int64_t>(time / kSecond, 0, std::ssize(seconds) - 1));
  };
  for (const Mover& mover : movers_in(judge)) {
    for (std::size_t i = number(mover.first); i <= number(mover.last); ++i) seconds[i].moving = true;
    const std::size_t end = mover.left ? number(mover.last + kSecond) : seconds.size() - 1;
    for (std::size_t i = number(mover.first - kSecond); i <= end; ++i) seconds[i].quiet = false;
  }
}

bool overlaps(const Spans& spans, const events::TimeSpan& other) {
  return std::ranges::any_of(
      spans, [&](const events::TimeSpan& span) { return span.from < other.to && other.from < span.to; });
}

bool has_light(const Seen& seen, const events::TimeSpan& span) {
  return std::ranges::any_of(
      seen.looks, [&](const Look& look) { return look.by_light > 0 && contains({span}, look.time); });
}

// Joins consecutive seconds into one span.
void add(Spans& spans, const events::TimeSpan& second) {
  if (!spans.empty() && spans.back().to == second.from) {
    spans.back().to = second.to;
  } else {
    spans.push_back(second);
  }
}

}  // namespace

std::vector<Mover> movers_in(const Seen& seen) {
  std::vector<Mover> movers;
  for (const auto& [id, trace] : traces_in(seen)) {
    if (moves(trace.places)) movers.push_back(trace.mover);
  }
  return movers;
}

Marks with_proofs(Marks marked, const std::vector<const Seen*>& judges) {
  Marks marks = marked;
  marks.quiet_assumed = marked.quiet.empty();
  marks.motion_assumed = marked.motion.empty();
  std::vector<Second> seconds;
  const std::int64_t last = judges.front()->looks.back().time / kSecond;
  for (std::int64_t i = 0; i <= last; ++i) {
    seconds.push_back({.span = {microseconds(i * kSecond), microseconds((i + 1) * kSecond)}});
  }
  for (const Seen* judge : judges) look_at(*judge, seconds);
  for (const Second& second : seconds) {
    const auto lit = [&](const Seen* judge) { return has_light(*judge, second.span); };
    if (overlaps(marked.quiet, second.span) || overlaps(marked.motion, second.span)) continue;
    if (std::ranges::any_of(judges, lit)) continue;
    if (second.moving && marks.motion_assumed) add(marks.motion, second.span);
    if (second.quiet && marks.quiet_assumed) add(marks.quiet, second.span);
  }
  return marks;
}

std::vector<MovingBox> moving_boxes(const Seen& start, const Spans& motion) {
  const std::vector<Mover> movers = movers_in(start);
  std::vector<MovingBox> boxes;
  for (std::size_t i = 0; i < start.looks.size(); ++i) {
    if (!contains(motion, start.looks[i].time)) continue;
    for (const MotionBox& box : start.looks[i].boxes) {
      if (std::ranges::find(movers, box.id, &Mover::id) != movers.end()) boxes.push_back({i, box.area});
    }
  }
  return boxes;
}

}  // namespace lm::host::commands::tune
