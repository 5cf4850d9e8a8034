#include "host/commands/tune/picture.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <string>

#include "host/base/time_text.h"

namespace lm::host::commands::tune {
namespace {

using std::chrono::microseconds;

constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
constexpr double kTextScale = 0.42;
constexpr int kLeft = 265;   // left edge of the chart
constexpr int kChart = 760;  // its width
constexpr int kRight = 210;  // for figures
constexpr int kRow = 20;
constexpr int kHead = 118;  // above the first row
constexpr int kFoot = 44;   // below the last one

// Blue, green, red. Distinguishable in greyscale too.
const cv::Scalar kPaper(255, 255, 255);
const cv::Scalar kInk(40, 36, 32);
const cv::Scalar kFaint(226, 222, 218);
const cv::Scalar kQuiet(214, 174, 104);  // blue
const cv::Scalar kMotion(96, 150, 40);   // green
const cv::Scalar kFalse(52, 44, 208);    // red
const cv::Scalar kOther(168, 160, 152);  // grey
const cv::Scalar kLight(70, 200, 245);   // yellow
const cv::Scalar kChosen(236, 244, 214);

class Chart {
 public:
  explicit Chart(const Outcome& outcome)
      : outcome_(outcome),
        image_(kHead + kRow * static_cast<int>(outcome.trials.size()) + kFoot, kLeft + kChart + kRight,
               CV_8UC3, kPaper) {}

  cv::Mat drawn() {
    head();
    for (std::size_t i = 0; i < outcome_.trials.size(); ++i) row(i);
    axis();
    return image_;
  }

 private:
  int column(std::int64_t time) const {
    const double share = double(time) / double(std::max<std::int64_t>(1, outcome_.length.count()));
    return kLeft + static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * kChart));
  }

  void write(const std::string& text, int x, int y, const cv::Scalar& colour = kInk) {
    cv::putText(image_, text, {x, y}, kFont, kTextScale, colour, 1, cv::LINE_AA);
  }

  // Right-aligned at x.
  void write_left_of(const std::string& text, int x, int y) {
    write(text, x - cv::getTextSize(text, kFont, kTextScale, 1, nullptr).width, y);
  }

  void fill(int from, int to, int top, int height, const cv::Scalar& colour) {
    image_(cv::Rect(from, top, std::max(1, to - from), height) & cv::Rect({0, 0}, image_.size())) = colour;
  }

  void band(const char* name, const Spans& spans, bool assumed, int top, const cv::Scalar& colour) {
    write(std::string(name) + (assumed ? " (assumed)" : ""), 12, top + 12);
    fill(kLeft, kLeft + kChart, top, 14, kFaint);
    for (const events::TimeSpan& span : spans)
      fill(column(span.from.count()), column(span.to.count()), top, 14, colour);
  }

  void legend() {
    int x = 12;
    const struct {
      const char* text;
      cv::Scalar colour;
    } entries[] = {{"boxes in motion spans", kMotion},
                   {"boxes in quiet spans (false)", kFalse},
                   {"boxes elsewhere", kOther},
                   {"boxes of a lighting change", kLight}};
    for (const auto& entry : entries) {
      fill(x, x + 12, 12, 12, entry.colour);
      write(entry.text, x + 18, 23);
      x += 42 + cv::getTextSize(entry.text, kFont, kTextScale, 1, nullptr).width;
    }
  }

  void head() {
    legend();
    band("quiet", outcome_.marks.quiet, outcome_.marks.quiet_assumed, 40, kQuiet);
    band("motion", outcome_.marks.motion, outcome_.marks.motion_assumed, 58, kMotion);
    const int y = kHead - 10;
    write("sens.  lcAdap  min. box", 12, y);
    const int right = kLeft + kChart;
    write("frames", right + 60, y - 18);
    write_left_of("quiet", right + 62, y);
    write_left_of("motion", right + 132, y);
    write_left_of("events", right + 200, y);
  }

  const cv::Scalar& colour_of(const Look& look) const {
    if (look.boxes.empty()) return kLight;
    if (contains(outcome_.marks.quiet, look.time)) return kFalse;
    return contains(outcome_.marks.motion, look.time) ? kMotion : kOther;
  }

  // Each frame lasts until the next.
  void looks(const std::vector<Look>& all, int top) {
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (!all[i].has_boxes()) continue;
      const std::int64_t end = i + 1 < all.size() ? all[i + 1].time : outcome_.length.count();
      fill(column(all[i].time), column(end), top + 3, kRow - 6, colour_of(all[i]));
    }
  }

  void row(std::size_t index) {
    const Trial& trial = outcome_.trials[index];
    const int top = kHead + kRow * static_cast<int>(index);
    const int base = top + 14;
    const bool chosen = index == outcome_.chosen;
    if (chosen) fill(0, image_.cols, top, kRow, kChosen);
    fill(kLeft, kLeft + kChart, top + 3, kRow - 6, kFaint);
    looks(trial.seen.looks, top);
    const auto [sensitivity, adaptation, width, height] = texts_of(trial.setting, outcome_.own);
    write(sensitivity, 16, base);
    write(adaptation, 78, base);
    write(width + " x " + height, 112, base);
    if (trial.setting == Setting{}) write("start", 220, base);
    const int right = kLeft + kChart;
    write_left_of(std::to_string(trial.figures.quiet_frames), right + 62, base);
    write_left_of(std::to_string(trial.figures.motion_frames), right + 132, base);
    write_left_of(std::to_string(trial.figures.events), right + 200, base);
    if (chosen) cv::rectangle(image_, cv::Rect(2, top, image_.cols - 4, kRow), kInk, 1);
  }

  void axis() {
    const int top = kHead + kRow * static_cast<int>(outcome_.trials.size());
    const double seconds = double(outcome_.length.count()) / 1e6;
    const double rough = std::max(seconds / 8, 1e-3);
    const double power = std::pow(10, std::floor(std::log10(rough)));
    double step = 10 * power;
    for (const double nice : {5.0, 2.0, 1.0}) {
      if (nice * power >= rough) step = nice * power;
    }
    for (int i = 0; i * step <= seconds; ++i) {
      const auto time = static_cast<std::int64_t>(std::llround(i * step * 1e6));
      cv::line(image_, {column(time), top + 2}, {column(time), top + 7}, kInk);
      std::string text = base::seconds_text(microseconds(time));
      text.erase(text.find_last_not_of('0') + 1);
      if (text.ends_with('.')) text.pop_back();
      const int width = cv::getTextSize(text, kFont, kTextScale, 1, nullptr).width;
      write(text, column(time) - width / 2, top + 22);
    }
    write_left_of("seconds", kLeft + kChart, top + 38);
    write("outlined: proposed", 12, top + 22);
  }

  const Outcome& outcome_;
  cv::Mat image_;
};

}  // namespace

cv::Mat picture_of(const Outcome& outcome) { return Chart(outcome).drawn(); }

}  // namespace lm::host::commands::tune
