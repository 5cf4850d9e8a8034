#include "host/outputs/report/page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <opencv2/imgproc.hpp>

#include "host/base/time_text.h"
#include "host/outputs/report/heat_map.h"
#include "host/outputs/report/markup.h"
#include "host/outputs/report/output_names.h"
#include "host/outputs/report/percent.h"
#include "host/outputs/report/templates.h"
#include "host/outputs/report/timeline.h"

namespace lm::host::outputs::report {
namespace {

using std::chrono::microseconds;
using namespace std::chrono_literals;

double seconds(microseconds time) { return double(time.count()) / 1e6; }

// "0:12.4": rounded down to tenths.
std::string moment(microseconds time) {
  return base::clock_text(time) + "." + std::to_string(time / 100ms % 10);
}

// "4.4 s", or "2 min 5 s" from a minute on.
std::string duration(microseconds time) {
  const std::chrono::milliseconds rounded = std::chrono::round<std::chrono::milliseconds>(time);
  if (rounded < 1min) return std::to_string(rounded / 1s) + "." + std::to_string(rounded / 100ms % 10) + " s";
  std::string text;
  if (rounded >= 1h) text = std::to_string(rounded / 1h) + " h ";
  text += std::to_string(rounded / 1min % 60) + " min";
  return rounded >= 1h ? text : text + " " + std::to_string(rounded / 1s % 60) + " s";
}

std::string counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string rounded(double value) { return std::to_string(std::llround(value)); }

std::string wall(const events::Event& event) {
  if (!event.wall_start) return "";
  const std::time_t time = std::chrono::system_clock::to_time_t(*event.wall_start);
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 64> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
  return fill("<p class=\"wall\">{{time}}</p>", {{"time", std::string(text.data(), length)}});
}

std::string regions(const events::Event& event) {
  std::string items;
  for (const std::string& name : event.regions) items += "<li>" + escaped(name) + "</li>";
  return items.empty() ? "" : "<ul class=\"regions\" aria-label=\"Regions touched\">" + items + "</ul>";
}

std::string dwell_time(const events::Event& event) {
  if (event.objects.empty()) return "";
  return fill("          <div><dt>Dwell time</dt><dd>{{time}}</dd></div>",
              {{"time", duration(events::dwell(event))}});
}

// Of the first visits and crossings, a sentence each.
std::string doings(const events::Event& event) {
  constexpr std::size_t kMost = 12;
  std::vector<std::pair<microseconds, std::string>> sentences;
  const bool divided = event.regions != std::vector<std::string>{"frame"};  // otherwise it is the whole frame
  for (const events::Visit& visit : event.visits) {
    if (!divided) break;
    sentences.emplace_back(visit.start, "Object " + std::to_string(visit.object) + " in " + visit.region +
                                            ": " + moment(visit.start) + " to " + moment(visit.end) + ".");
  }
  for (const events::Crossing& crossing : event.crossings) {
    sentences.emplace_back(crossing.time, "Object " + std::to_string(crossing.object) + " crossed " +
                                              crossing.line + " to the " + detector::name_of(crossing.to) +
                                              ": " + moment(crossing.time) + ".");
  }
  std::ranges::stable_sort(sentences, {}, &std::pair<microseconds, std::string>::first);
  const std::size_t more = sentences.size() - std::min(sentences.size(), kMost);
  sentences.resize(sentences.size() - more);
  std::string items;
  for (const auto& [time, text] : sentences) items += "<li>" + escaped(text) + "</li>";
  if (more > 0) items += "<li>" + std::to_string(more) + " more.</li>";
  return items.empty() ? "" : "<ul class=\"doings\">" + items + "</ul>";
}

std::string picture(const PageEvent& shown, std::size_t number) {
  if (shown.picture.empty()) return "";
  return fill(R"(<img src="{{{data}}}" width="{{w}}" height="{{h}}" loading="lazy" alt="{{alt}}">)",
              {{"data", data_uri(shown.picture)},
               {"w", std::to_string(shown.size.width)},
               {"h", std::to_string(shown.size.height)},
               {"alt", "Frame at " + moment(shown.event.peak) + " of event " + std::to_string(number) +
                           ", with boxes drawn"}});
}

std::string card(const PageEvent& shown, std::size_t number) {
  const events::Event& event = shown.event;
  return fill(templates::event, {{"number", std::to_string(number)},
                                 {"kind", kind_name(event.kind)},
                                 {"kind_title", event.kind == events::EventKind::kLight ? "Light" : "Motion"},
                                 {"picture", picture(shown, number)},
                                 {"from", moment(event.start)},
                                 {"to", moment(event.end)},
                                 {"wall", wall(event)},
                                 {"duration", duration(event.end - event.start)},
                                 {"share", percent(event.peak_share)},
                                 {"boxes", std::to_string(event.most_boxes)},
                                 {"regions", regions(event)},
                                 {"dwell", dwell_time(event)},
                                 {"doings", doings(event)},
                                 {"started", event.started},
                                 {"ended", event.ended}});
}

std::int64_t count_of(const PageData& data, events::EventKind kind) {
  return std::count_if(data.events.begin(), data.events.end(),
                       [&](const PageEvent& shown) { return shown.event.kind == kind; });
}

std::string note(const PageData& data) {
  const auto bare = std::count_if(data.events.begin(), data.events.end(),
                                  [](const PageEvent& shown) { return shown.picture.empty(); });
  std::string text;
  if (data.events.empty()) text = "No events were found.";
  if (bare > 0) {
    text = "To keep this page small, " + counted(bare, "event") + (bare == 1 ? " has" : " have") +
           " no picture. ";
  }
  if (data.more_events > 0) {
    text +=
        counted(data.more_events, "later event") + (data.more_events == 1 ? " is" : " are") + " not listed.";
  }
  return text.empty() ? "" : "<p class=\"note\">" + escaped(text) + "</p>";
}

std::string filter(const PageData& data) {
  if (count_of(data, events::EventKind::kMotion) == 0 || count_of(data, events::EventKind::kLight) == 0)
    return "";
  std::string choices;
  for (const auto& [id, text] : {std::pair{"all", "all"}, {"motion", "motion"}, {"light", "light"}}) {
    choices += std::string("<label><input type=\"radio\" name=\"show\" id=\"show-") + id + "\"" +
               (choices.empty() ? " checked" : "") + "> " + text + "</label>\n";
  }
  return "<fieldset class=\"filter\"><legend>Show</legend>\n" + choices + "</fieldset>";
}

// The heat map's colour scale for CSS.
std::string colours() {
  cv::Mat ramp(1, 9, CV_8U);
  for (int i = 0; i < ramp.cols; ++i) ramp.at<std::uint8_t>(0, i) = static_cast<std::uint8_t>(i * 255 / 8);
  cv::applyColorMap(ramp, ramp, cv::COLORMAP_TURBO);
  std::string list;
  for (int i = 0; i < ramp.cols; ++i) {
    const auto colour = ramp.at<cv::Vec3b>(0, i);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%s#%02x%02x%02x", i > 0 ? "," : "", colour[2], colour[1],
                  colour[0]);
    list += text.data();
  }
  return list;
}

// While at least one event of motion is in progress. The events are in the order of their starts.
microseconds time_moving(const PageData& data) {
  microseconds moving{0};
  microseconds until{0};
  for (const PageEvent& shown : data.events) {
    if (shown.event.kind != events::EventKind::kMotion) continue;
    moving += std::max(shown.event.end, until) - std::max(shown.event.start, until);
    until = std::max(until, shown.event.end);
  }
  return moving;
}

Values headline(const PageData& data) {
  const microseconds moving = time_moving(data);
  const double length = seconds(data.length);
  const double work = seconds(data.work);
  const std::string pictures = std::to_string(data.frame.width) + " × " + std::to_string(data.frame.height);
  return {{"title", data.source},
          {"about",
           pictures + " pixels" + (data.rate > 0 ? ", " + rounded(data.rate) + " frames per second" : "")},
          {"events", std::to_string(std::int64_t(data.events.size()) + data.more_events)},
          {"kinds", std::to_string(count_of(data, events::EventKind::kMotion)) + " motion, " +
                        std::to_string(count_of(data, events::EventKind::kLight)) + " lighting"},
          {"moving", duration(moving)},
          {"moving_share", length > 0 ? percent(seconds(moving) / length) + " of the video" : ""},
          {"length", duration(data.length)},
          {"frames",
           counted(data.frames, "frame") + ", " + std::to_string(data.frames_with_motion) + " with boxes"},
          {"speed", work > 0 ? rounded(double(data.frames) / work) + " fps" : "–"},
          {"speed_detail", work > 0 ? rounded(length / work) + " × real time, " + duration(data.work) : ""}};
}

}  // namespace

std::string render_page(const PageData& data) {
  Values values = headline(data);
  std::string cards;
  for (std::size_t i = 0; i < data.events.size(); ++i) cards += card(data.events[i], i + 1);
  std::string settings;
  for (const auto& [name, value] : data.settings) {
    settings += fill("<div><dt>{{name}}</dt><dd>{{value}}</dd></div>\n", {{"name", name}, {"value", value}});
  }
  values.merge(Values{
      {"style", fill(templates::style, {{"colours", colours()}})},
      {"timeline", timeline(data)},
      {"heat", data_uri(data.heat)},
      {"heat_width", std::to_string(data.heat_size.width)},
      {"heat_height", std::to_string(data.heat_size.height)},
      {"heat_alt", "A frame of the video, coloured where there was motion; the busiest place had motion in " +
                       percent(data.heat_highest) + " of the frames"},
      {"heat_middle", percent(heat_at(0.5) * data.heat_highest)},
      {"heat_highest", percent(data.heat_highest)},
      {"filter", filter(data)},
      {"note", note(data)},
      {"cards", cards},
      {"settings", settings},
      {"made", data.made}});
  return fill(templates::page, values);
}

}  // namespace lm::host::outputs::report
