#include "host/events/events_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/events/event_json.h"
#include "host/failure.h"
#include "host/time_text.h"

namespace lm::host {
namespace {

constexpr const char* kColumns =
    "id,kind,start,end,peak,from,to,first_frame,last_frame,peak_frame,frames,most_boxes,peak_share,"
    "x,y,width,height,largest_x,largest_y,largest_width,largest_height,regions,wall_start,wall_end,"
    "started,ended\r\n";

double seconds(std::chrono::microseconds time) {
  return static_cast<double>(std::chrono::round<std::chrono::milliseconds>(time).count()) / 1000;
}

std::string quoted(const std::string& text) {
  std::string cell = "\"";
  for (const char c : text) cell.append(c == '"' ? 2 : 1, c);
  return cell + "\"";
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ";") + name;
  return text;
}

std::string row(const Event& event) {
  std::string text = event.id + "," + kind_text(event.kind);
  for (const auto time : {event.start, event.end, event.peak, event.from, event.to})
    text += "," + seconds_text(time);
  for (const std::int64_t number : {event.first_frame, event.last_frame, event.peak_frame, event.frames,
                                    static_cast<std::int64_t>(event.most_boxes)}) {
    text += "," + std::to_string(number);
  }
  text += "," + json_text(event.peak_share);
  for (const cv::Rect2d& box : {event.envelope, event.largest}) {
    for (const double number : {box.x, box.y, box.width, box.height}) text += "," + json_text(number);
  }
  text += "," + quoted(joined(event.regions));
  for (const auto& wall : {event.wall_start, event.wall_end}) text += "," + (wall ? utc_text(*wall) : "");
  return text + "," + quoted(event.started) + "," + quoted(event.ended) + "\r\n";
}

void write(const std::string& text, const PendingFile& pending) {
  errno = 0;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(pending.path().c_str(), "we"),
                                                             &std::fclose);
  const bool written = file && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                       std::fflush(file.get()) == 0;
  if (written) return;
  const std::string cause = errno != 0 ? std::generic_category().message(errno) : "write error";
  throw Failure(kTrouble, pending.target() + " cannot be written: " + cause);
}

}  // namespace

EventsFile::EventsFile(const RunContext& context)
    : rules_(context.options.events.rules), source_(context.source), pending_(context.options.events.file) {}

void EventsFile::frame(const Frame&, const Observation& seen) {
  ++frames_;
  last_ = seen.time;
}

void EventsFile::finish() {
  std::stable_sort(events_.begin(), events_.end(),
                   [](const Event& a, const Event& b) { return a.start < b.start; });
  for (Event& event : events_) event.to = std::min(event.to, last_);
  write(pending_.target().ends_with(".csv") ? csv() : json(), pending_);
}

std::string EventsFile::csv() const {
  std::string text = kColumns;
  for (const Event& event : events_) text += row(event);
  return text;
}

// One line for each event, so that line tools are of use too.
std::string EventsFile::json() const {
  Json::Value source;
  source["name"] = source_.name;
  source["live"] = source_.live;
  source["width"] = source_.size.width;
  source["height"] = source_.size.height;
  source["frames"] = Json::Int64(frames_);
  source["last"] = seconds(last_);
  if (source_.start) source["wall_start"] = utc_text(*source_.start);
  Json::Value rules;
  rules["min_event"] = rules_.min_event;
  rules["gap"] = rules_.gap;
  rules["pre"] = rules_.pre;
  rules["post"] = rules_.post;
  std::string text = "{\"format\":\"lightmotion-events\",\"version\":1,\n\"source\":" + json_text(source) +
                     ",\n\"rules\":" + json_text(rules) + ",\n\"events\":[";
  for (const Event& event : events_) text += (&event == &events_.front() ? "\n" : ",\n") + event_json(event);
  return text + "\n]}\n";
}

}  // namespace lm::host
