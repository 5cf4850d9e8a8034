#include "host/events/explain.h"

#include <algorithm>
#include <cmath>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/events/why.h"

namespace lm::host::events {
namespace {

constexpr double kSmallestSide = 0.05;  // the default

// Reads numbers as the detector does: up to the first character that is not part of the number.
double side(const Json::Value& value) {
  try {
    const float number = std::stof(value.asString());
    return number > 0 && number <= 1 ? number : kSmallestSide;
  } catch (const std::exception&) {
    return kSmallestSide;
  }
}

std::string counted(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string rule_text(double seconds) {
  return base::seconds_text(std::chrono::microseconds(std::llround(seconds * 1e6))) + " s";
}

std::string why_dropped(const Event& event, double min_event) {
  if (event.end - event.start < std::chrono::microseconds(std::llround(min_event * 1e6))) {
    return "--min-event requires " + rule_text(min_event);
  }
  return "nothing in it moved from its place or stayed, so it was clutter";
}

std::string box_text(const cv::Rect2d& box) {
  return percent_text(box.width) + " x " + percent_text(box.height) + " at " + percent_text(box.x) + ", " +
         percent_text(box.y);
}

}  // namespace

cv::Size2d smallest_box(const std::string& document) {
  const Json::Value root = base::parse_json(document);
  if (!root.isObject()) return {kSmallestSide, kSmallestSide};
  return {side(root["minBoxW"]), side(root["minBoxH"])};
}

Explainer::Explainer(const RunContext& context, std::FILE* out)
    : span_(parse_span(context.options.explain).value_or(TimeSpan{})),
      rules_(context.options.rules),
      document_(context.document),
      hidden_(detector::Regions(context.document)),
      out_(out) {}

void Explainer::frame(const source::Frame& frame, const Observation& seen) {
  const bool inside = seen.time >= span_.from && seen.time <= span_.to;
  hidden_.look(frame.image, inside);
  if (!inside) return;
  ++frames_seen_;
  if (seen.boxes.empty()) {
    ++frames_without_boxes_;
  } else {
    frames_ += frame_line(seen);
  }
  clutter_ += seen.clutter;
  boxes_by_light_ += static_cast<int>(std::ranges::count(seen.boxes, true, &Box::by_light));
}

std::string Explainer::frame_line(const Observation& seen) const {
  std::string text = "  " + base::seconds_text(seen.time) + " s, frame " + std::to_string(seen.frame) + ":";
  for (const Box& box : seen.boxes) {
    text += (&box == &seen.boxes.front() ? " " : "; ") + box_text(box.area);
    for (const std::string& name : box.regions)
      text += (&name == &box.regions.front() ? " in " : ", ") + name;
    if (box.by_light) text += " (light)";
  }
  return text + "\n";
}

bool Explainer::in_span(const Event& event) const {
  return event.start <= span_.to && event.end >= span_.from;
}

void Explainer::ended(const Event& event) {
  if (!in_span(event)) return;
  events_ += "  " + event.id + ", " + base::seconds_text(event.start) + " to " +
             base::seconds_text(event.end) + " s. " + event.started + " " + event.ended + " Boxes in " +
             std::to_string(event.frames) + " of " +
             counted(event.last_frame - event.first_frame + 1, "frame", "frames") + "; --gap bridges up to " +
             rule_text(rules_.gap) + " without.\n";
}

void Explainer::dropped(const Event& event) {
  if (!in_span(event)) return;
  events_ += "  dropped: boxes in " + counted(event.frames, "frame", "frames") + " from " +
             base::seconds_text(event.start) + " to " + base::seconds_text(event.end) + " s; " +
             why_dropped(event, rules_.min_event) + "\n";
}

std::string Explainer::settings() const {
  const cv::Size2d least = smallest_box(document_);
  std::string text = "  minimum box size: " + percent_text(least.width) + " of the width or " +
                     percent_text(least.height) + " of the height; boxes below both are dropped\n";
  for (const HiddenPlace& place : hidden_.places()) {
    text += "  not watched: " + place.name + "; the picture changed there in " +
            counted(place.pictures, "frame", "frames") + "\n";
  }
  if (boxes_by_light_ > 0) {
    text += "  attributed to a lighting change, not to motion: " + counted(boxes_by_light_, "box", "boxes") +
            "\n";
  }
  if (clutter_ > 0) text += "  left out as clutter: " + counted(clutter_, "box", "boxes") + "\n";
  return text;
}

void Explainer::commit() {
  const std::string text = "From " + base::seconds_text(span_.from) + " to " + base::seconds_text(span_.to) +
                           " s: " + counted(frames_seen_, "frame", "frames") + ", " +
                           std::to_string(frames_without_boxes_) + " without boxes\n" + frames_ + settings() +
                           (events_.empty() ? "  no event\n" : events_);
  std::fputs(text.c_str(), out_);
}

}  // namespace lm::host::events
