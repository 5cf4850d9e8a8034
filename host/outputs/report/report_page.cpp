#include "host/outputs/report/report_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <opencv2/imgproc.hpp>

#include "host/base/whole_file.h"
#include "host/events/event_tracker.h"
#include "host/outputs/overlay.h"
#include "host/outputs/report/image_bytes.h"
#include "host/outputs/report/lookback.h"
#include "host/outputs/report/settings.h"
#include "host/outputs/report/shown_size.h"

namespace lm::host::outputs::report {
namespace {

using std::chrono::microseconds;

constexpr int kLongestThumbnail = 448;
constexpr int kLongestHeatMap = 1024;
constexpr int kPictureCoarseness = 6;

std::string made_now() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  gmtime_r(&now, &parts);
  std::array<char, 64> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", &parts);
  return "Made by lightmotion " LIGHTMOTION_PROGRAM_VERSION " on " + std::string(text.data(), length) + ".";
}

}  // namespace

ReportPage::ReportPage(const std::string& file, const source::SourceInfo& source, const std::string& document,
                       const events::EventRules& rules)
    : pending_(file),
      source_(source),
      heat_(source.size),
      ground_(source.size),
      best_(lookback(rules), shown_size(source.size, source.pixel_aspect, kLongestThumbnail)) {
  data_.source = source.name;
  data_.frame = source.size;
  data_.rate = source.rate;
  data_.settings = shown_settings(document, rules);
  data_.made = made_now();
}

void ReportPage::frame(const source::Frame& frame, const events::Observation& seen) {
  best_.frame(frame.image, seen);
  ground_.offer(frame.image, seen.boxes.empty());
  const events::Boxes moving = events::boxes_of_kind(seen.boxes, events::EventKind::kMotion);
  heat_.add(moving);
  data_.activity.add(seen.time, events::EventKind::kMotion, events::share_under(moving));
  data_.activity.add(seen.time, events::EventKind::kLight,
                     events::share_under(events::boxes_of_kind(seen.boxes, events::EventKind::kLight)));
  ++data_.frames;
  data_.frames_with_motion += seen.boxes.empty() ? 0 : 1;
  // The last frame is shown for as long as the previous one.
  data_.length =
      seen.time + (source_.rate > 0 ? microseconds(std::llround(1e6 / source_.rate)) : seen.time - previous_);
  previous_ = seen.time;
}

void ReportPage::ended(const events::Event& event) {
  Still still = best_.take(event);
  if (data_.events.size() == kMostEvents) {
    ++data_.more_events;
    return;
  }
  PageEvent shown{event, "", still.image.size()};
  if (data_.events.size() < kMostPictures && !still.image.empty()) {
    draw_overlay(still.image, still.boxes, "");
    shown.picture = jpeg_bytes(still.image, kPictureCoarseness);
  }
  data_.events.push_back(std::move(shown));
}

void ReportPage::finish() {
  data_.work = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin_);
  std::stable_sort(data_.events.begin(), data_.events.end(),
                   [](const PageEvent& a, const PageEvent& b) { return a.event.start < b.event.start; });
  cv::Mat heat = heat_.over(ground_.image());
  cv::resize(heat, heat, shown_size(source_.size, source_.pixel_aspect, kLongestHeatMap), 0, 0,
             cv::INTER_AREA);
  data_.heat = jpeg_bytes(heat, kPictureCoarseness);
  data_.heat_size = heat.size();
  data_.heat_highest = heat_.highest();
  base::write_bytes(pending_, render_page(data_));
}

}  // namespace lm::host::outputs::report
