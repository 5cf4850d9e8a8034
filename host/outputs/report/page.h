// The report as one self-contained HTML page.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <utility>
#include <vector>

#include "host/events/event.h"
#include "host/outputs/report/activity.h"

namespace lm::host::outputs::report {

// An event with its best frame, boxes drawn, as JPEG; empty after the report's limit on pictures.
struct PageEvent {
  events::Event event;
  std::string picture;
  cv::Size size;
};

struct PageData {
  std::string source;  // as the user named it
  cv::Size frame;
  double rate = 0;
  std::int64_t frames = 0;
  std::int64_t frames_with_motion = 0;
  std::chrono::microseconds length{0};  // of the video
  std::chrono::microseconds work{0};    // time of the analysis

  std::vector<PageEvent> events;
  std::int64_t more_events = 0;  // beyond the page's limit
  Activity activity;

  std::string heat;  // JPEG
  cv::Size heat_size;
  double heat_highest = 0;

  std::vector<std::pair<std::string, std::string>> settings;
  std::string made;  // when, and by which version
};

std::string render_page(const PageData& data);

}  // namespace lm::host::outputs::report
