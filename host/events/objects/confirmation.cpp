#include "host/events/objects/confirmation.h"

#include <algorithm>

namespace lm::host::events::objects {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

constexpr auto kUnknown = 3s;         // the scene, in its first seconds
constexpr auto kWindow = 2s;          // in which movement is looked for
constexpr std::size_t kLooks = 3;     // ... which has at least so many looks
constexpr double kPresent = 0.7;      // share of its frames that have a box: what comes and goes is clutter
constexpr auto kStayed = 2s;          // seconds after which what is likely is confirmed
constexpr auto kAtOnce = 1s;          // seconds after which what does not move among clutter is part of it
constexpr double kStill = 0.1;        // sizes: what moves less does not move
constexpr auto kWait = 150ms;         // seconds before what is likely in rain and snow is one: flakes meet
constexpr double kMostPerLook = 0.1;  // seconds: a single look must not weigh more at low frame rates

// What proves a movement.
struct Proof {
  double seconds;   // from the first look to the last
  double distance;  // as in Movement
  double deviation;
  double unevenness;
};
constexpr Proof kInCalm{0.3, 0.5, 0.25, 0.25};
constexpr Proof kAtFirst{1, 0.5, 0.35, 0.35};  // and in rain and snow
constexpr Proof kInDoubt{1, 1.5, 0.15, 0.25};

double in_seconds(microseconds time) { return std::chrono::duration<double>(time).count(); }

double sum(const std::deque<Look>& looks) {
  double seconds = 0;
  for (const Look& look : looks) seconds += look.seconds;
  return seconds;
}

bool is_steady(const std::deque<Look>& looks) {
  const double span = in_seconds(looks.back().time - looks.front().time) + looks.front().seconds;
  return sum(looks) >= kPresent * span;
}

}  // namespace

std::vector<Standing> Confirmation::update(microseconds time, const std::vector<cv::Rect2d>& boxes,
                                           const std::vector<TrackedBox>& objects, bool hidden) {
  if (begin_.count() < 0) begin_ = time_ = time;
  const double passed = in_seconds(time - time_);
  time_ = time;
  map_.pass(time);
  std::map<std::int64_t, cv::Rect2d> areas;  // an object may have several boxes
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (objects[i].id == 0) continue;
    areas[objects[i].id] |=
        cv::Rect2d(boxes[i].x * aspect_, boxes[i].y, boxes[i].width * aspect_, boxes[i].height);
    for (const std::int64_t other : objects[i].others) records_[other].seen = time;
  }
  for (const auto& [id, box] : areas) look(records_[id], box, passed);
  for (auto& [id, record] : records_) {
    if (areas.contains(id)) {
      judge(record);
    } else if (!record.moved) {
      record.standing = Standing::kClutter;
      if (hidden) record.unaccounted.clear();
      if (record.seen != time) account(record, ClutterMap::Kind::kClutter);
    }
  }
  std::erase_if(records_, [&](const auto& record) { return time - record.second.seen > 2 * memory_; });
  std::vector<Standing> result;
  result.reserve(objects.size());
  for (const TrackedBox& box : objects) result.push_back(standing(box));
  return result;
}

void Confirmation::look(Record& record, const cv::Rect2d& box, double seconds) {
  record.seen = time_;
  record.looks.push_back({time_, box, seconds});
  while (record.looks.size() > kLooks && time_ - record.looks.front().time > kWindow)
    record.looks.pop_front();
  record.unaccounted.push_back({time_, box, std::min(seconds, kMostPerLook)});
}

void Confirmation::judge(Record& record) {
  if (record.moved) return account(record, ClutterMap::Kind::kObject);
  const Look& last = record.looks.back();
  const bool expected = map_.expects_clutter(last.box);
  const bool doubtful = time_ - begin_ < kUnknown || expected;
  if (!doubtful) {
    record.likely_since = record.likely_since.value_or(time_);
  } else if (record.likely_since) {
    record.likely_since.reset();
    record.unaccounted = {record.unaccounted.back()};
  }
  const microseconds likely = time_ - record.likely_since.value_or(time_);
  const bool moves = !(expected && map_.is_weather()) && has_moved(record, expected);
  record.moved = moves && !doubtful;
  const bool stayed = likely >= kStayed && is_steady(record.looks);
  const bool early = map_.is_weather() && likely < kWait;
  record.standing = moves || stayed     ? Standing::kConfirmed
                    : doubtful || early ? Standing::kClutter
                                        : Standing::kLikely;
  if (record.moved || stayed) {
    account(record, ClutterMap::Kind::kObject);
  } else if (moves) {
    record.unaccounted.clear();
  } else if (doubtful && time_ - record.unaccounted.front().time >= kAtOnce) {
    if (movement(record.looks, aspect_).distance < kStill) account(record, ClutterMap::Kind::kClutter);
    record.unaccounted.clear();
  }
}

bool Confirmation::has_moved(const Record& record, bool expected) const {
  const bool at_once = !expected && !map_.is_weather() && time_ - begin_ >= kUnknown;
  const Proof& proof = at_once ? kInCalm : expected ? kInDoubt : kAtFirst;
  const std::deque<Look>& looks = record.looks;
  if (in_seconds(looks.back().time - looks.front().time) < proof.seconds || !is_steady(looks)) return false;
  const Movement found = movement(looks, aspect_);
  return found.distance >= proof.distance && found.deviation <= proof.deviation &&
         found.unevenness <= proof.unevenness;
}

void Confirmation::account(Record& record, ClutterMap::Kind kind) {
  for (const Look& look : record.unaccounted) map_.add(kind, look.box, look.seconds);
  record.unaccounted.clear();
}

Standing Confirmation::standing(const TrackedBox& objects) const {
  if (objects.id == 0) return Standing::kConfirmed;
  Standing best = records_.at(objects.id).standing;
  for (const std::int64_t other : objects.others) best = std::max(best, records_.at(other).standing);
  return best;
}

void Confirmation::forget() {
  records_.clear();
  begin_ = microseconds(-1);
}

}  // namespace lm::host::events::objects
