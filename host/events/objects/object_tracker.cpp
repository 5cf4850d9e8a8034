#include "host/events/objects/object_tracker.h"

#include <algorithm>

#include "host/events/objects/assignment.h"

namespace lm::host::events::objects {
namespace {

using std::chrono::microseconds;
using namespace std::chrono_literals;

constexpr double kUnmatched = 2.2;    // cost of a track without a box
constexpr double kCovered = 0.5;      // share of an object that a shared box covers
constexpr auto kEstablished = 500ms;  // what is younger and merges was a part
constexpr auto kMostMerged = 10s;     // what has not come apart by then does not
constexpr double kMuchLarger = 6;     // ratio of areas of what cannot be one object
constexpr double kOwnEdge = 0.3;      // by which an object must reach beyond all others, in its sizes
constexpr double kPartInside = 0.6;   // share of a part in the object
constexpr double kPartMargin = 0.1;   // ... enlarged by this on each side
constexpr double kPartReach = 0.5;    // distance at which a part is an object, in its sizes
constexpr auto kMostPart = 2s;        // ... as it is after this time
constexpr int kMemory = 3;            // an object is remembered for so many times as long as it had been seen
constexpr auto kLeastMemory = 300ms;
constexpr auto kMemoryOutside = 500ms;  // of what left the frame
constexpr double kBorder = 0.005;       // of the frame's height

double seconds_of(microseconds time) { return std::chrono::duration<double>(time).count(); }

cv::Rect2d enlarged(const cv::Rect2d& box, double part) {
  const cv::Point2d margin(box.width * part, box.height * part);
  return {box.tl() - margin, box.br() + margin};
}

// Between the nearest edges; 0 for boxes that touch.
double gap_between(const cv::Rect2d& a, const cv::Rect2d& b) {
  return std::max({0.0, a.x - b.br().x, b.x - a.br().x, a.y - b.br().y, b.y - a.br().y});
}

std::int64_t object_of(const Track& track) { return track.part_of.value_or(track.id); }

// Whether the track, which looks like a part, is an object that came into one box with `small`.
bool is_another(const Track& track, const Track& small) {
  return object_of(track) != object_of(small) && track.box().area() > kMuchLarger * small.box().area();
}

bool is_apart(const Track& whole, const Track& part) {
  return part.age() > kMostPart || gap_between(whole.box(), part.box()) > kPartReach * part.size();
}

}  // namespace

std::vector<TrackedBox> ObjectTracker::update(microseconds time, const Boxes& boxes, bool hidden) {
  Boxes scaled;
  for (const cv::Rect2d& box : boxes) {
    scaled.emplace_back(box.x * aspect_, box.y, box.width * aspect_, box.height);
  }
  const microseconds passed = time - time_;
  time_ = time;
  predicted_.clear();
  for (Track& track : tracks_) {
    track.predict(seconds_of(passed));
    predicted_.push_back(track.box());
  }
  members_.assign(boxes.size(), {});
  assigned_.assign(tracks_.size(), false);
  assign_boxes(scaled);
  find_merged(scaled);
  for (std::size_t i = 0; i < scaled.size(); ++i) settle(members_[i], scaled[i]);
  for (std::size_t i = 0; i < assigned_.size(); ++i) {
    if (!assigned_[i]) lose(tracks_[i], hidden ? 0us : passed);
  }
  for (std::size_t i = 0; i < scaled.size(); ++i) start(members_[i], scaled[i]);
  for (Track& track : tracks_) release(track);
  std::vector<TrackedBox> result;
  for (const Indices& members : members_) result.push_back(named(members));
  std::erase_if(tracks_, [](const Track& track) { return track.over; });
  return result;
}

void ObjectTracker::assign_boxes(const Boxes& boxes) {
  if (tracks_.empty() || boxes.empty()) return;
  cv::Mat1d costs(static_cast<int>(tracks_.size()), static_cast<int>(boxes.size()), kUnmatched);
  for (int row = 0; row < costs.rows; ++row) {
    for (int column = 0; column < costs.cols; ++column) {
      const cv::Rect2d& box = boxes[static_cast<std::size_t>(column)];
      if (box.empty()) continue;
      const std::optional<double> cost = tracks_[static_cast<std::size_t>(row)].cost(box);
      if (cost) costs(row, column) = std::min(*cost, kUnmatched);
    }
  }
  const std::vector<int> columns = assign(costs);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i] < 0 || costs(static_cast<int>(i), columns[i]) >= kUnmatched) continue;
    members_[static_cast<std::size_t>(columns[i])].push_back(i);
    assigned_[i] = true;
  }
}

// What had a box in the frame before and has none now, but another object's box covers its place, has merged
// with that object.
void ObjectTracker::find_merged(const Boxes& boxes) {
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    if (assigned_[i] || tracks_[i].state() == Track::State::kLost) continue;
    double most = kCovered;
    Indices* best = nullptr;
    for (std::size_t b = 0; b < boxes.size(); ++b) {
      const double share = share_within(predicted_[i], boxes[b]);
      if (share < most || members_[b].empty()) continue;
      most = share;
      best = &members_[b];
    }
    if (best == nullptr) continue;
    best->push_back(i);
    assigned_[i] = true;
  }
}

// Decides which of the tracks in a box are objects of their own.
void ObjectTracker::settle(Indices& members, const cv::Rect2d& box) {
  if (members.empty()) return;
  std::sort(members.begin(), members.end());
  const auto young = std::stable_partition(members.begin(), members.end(), [this](std::size_t i) {
    return !tracks_[i].part_of && tracks_[i].age() >= kEstablished;
  });
  const std::size_t first = members.front();
  const auto merged_too_long = [this](std::size_t i) {
    return tracks_[i].state() == Track::State::kMerged && tracks_[i].merged_for() > kMostMerged;
  };
  Indices kept{first};
  for (auto member = members.begin() + 1; member < members.end(); ++member) {
    Track& track = tracks_[*member];
    if (merged_too_long(*member) || (member >= young && !is_another(track, tracks_[first]))) {
      track.over = true;
      continue;
    }
    if (track.part_of) become_object(track);
    kept.push_back(*member);
  }
  members = kept;
  if (members.size() == 1) {
    tracks_[first].correct(box, time_);
  } else {
    share(members, box);
  }
}

// An edge says nothing where two objects reach about as far: people who cross would turn back in the middle.
// Without edges, they go on as before.
void ObjectTracker::share(const Indices& members, const cv::Rect2d& box) {
  for (const std::size_t i : members) {
    const cv::Rect2d& place = predicted_[i];
    const double clear = kOwnEdge * tracks_[i].size();
    Track::Edges own{true, true, true, true};
    for (const std::size_t other : members) {
      if (other == i) continue;
      const cv::Rect2d& near = predicted_[other];
      own.left = own.left && place.x < near.x - clear;
      own.right = own.right && place.br().x > near.br().x + clear;
      own.top = own.top && place.y < near.y - clear;
      own.bottom = own.bottom && place.br().y > near.br().y + clear;
    }
    tracks_[i].correct_within(box, own, time_);
  }
}

// A box without a track: a part of an object that has another box, or an object that appeared.
void ObjectTracker::start(Indices& members, const cv::Rect2d& box) {
  if (!members.empty() || box.empty()) return;
  Track track(box, time_);
  double most = kPartInside;
  for (std::size_t i = 0; i < predicted_.size(); ++i) {
    const Track& whole = tracks_[i];
    if (whole.over || whole.state() == Track::State::kLost) continue;
    const double share = share_within(box, enlarged(predicted_[i], kPartMargin));
    if (share < most) continue;
    most = share;
    track.part_of = object_of(whole);
  }
  if (!track.part_of) track.id = next_id_++;
  members = {tracks_.size()};
  tracks_.push_back(track);
}

void ObjectTracker::lose(Track& track, microseconds passed) {
  track.lose(passed);
  const microseconds memory = std::clamp<microseconds>(kMemory * track.age(), kLeastMemory,
                                                       left_frame(track) ? kMemoryOutside : memory_);
  // At low frame rates, one frame without a box may be longer than that.
  track.over = track.over || (track.lost_frames() > 1 && track.lost_for() > memory);
}

bool ObjectTracker::left_frame(const Track& track) const {
  const cv::Rect2d frame(kBorder, kBorder, aspect_ - 2 * kBorder, 1 - 2 * kBorder);
  const cv::Rect2d place = track.box();
  return (track.last_box() & frame) != track.last_box() || !frame.contains((place.tl() + place.br()) / 2);
}

// A part becomes an object when the object is gone, which it then continues, or when the two stay apart.
void ObjectTracker::release(Track& part) {
  if (!part.part_of) return;
  Track* whole = find(*part.part_of);
  const bool seen = part.state() == Track::State::kSeen && !part.over;
  if (whole != nullptr && whole->state() == Track::State::kLost && seen) {
    part.id = whole->id;
    whole->over = true;
    part.part_of.reset();
  } else if (whole == nullptr || is_apart(*whole, part)) {
    become_object(part);
  }
}

void ObjectTracker::become_object(Track& part) {
  part.id = next_id_++;
  part.part_of.reset();
}

Track* ObjectTracker::find(std::int64_t id) {
  const auto found = std::find_if(tracks_.begin(), tracks_.end(), [id](const Track& track) {
    return !track.over && !track.part_of && track.id == id;
  });
  return found == tracks_.end() ? nullptr : &*found;
}

TrackedBox ObjectTracker::named(const Indices& members) const {
  if (members.empty()) return {};
  const std::size_t largest = *std::max_element(
      members.begin(), members.end(),
      [this](std::size_t a, std::size_t b) { return tracks_[a].size() < tracks_[b].size(); });
  TrackedBox result{object_of(tracks_[largest]), {}};
  for (const std::size_t i : members) {
    if (object_of(tracks_[i]) != result.id) result.others.push_back(object_of(tracks_[i]));
  }
  std::sort(result.others.begin(), result.others.end());
  result.others.erase(std::unique(result.others.begin(), result.others.end()), result.others.end());
  return result;
}

void ObjectTracker::forget() { tracks_.clear(); }

}  // namespace lm::host::events::objects
