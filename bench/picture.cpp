#include "bench/picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/scene.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

// Blue, green, red.
const cv::Scalar kPaper(255, 255, 255), kInk(50, 44, 40), kFaint(150, 145, 140), kLine(228, 224, 220);
const cv::Scalar kOurs(92, 148, 22), kWhole(196, 150, 110), kMaskOnly(226, 204, 184);

struct Series {
  const char* label;
  const char* candidate;
  const char* measure;
  cv::Scalar colour;
};
const std::array<Series, 4> kSeries = {{{"lightmotion", kPlugin, "whole_ms", kOurs},
                                        {"CNT, mask alone", kCnt, "whole_ms", kMaskOnly},
                                        {"MOG2, mask alone", kMog2, "mask_ms", kMaskOnly},
                                        {"MOG2", kMog2, "whole_ms", kWhole}}};

struct Bar {
  Series series;
  double ms;
};
struct Group {
  std::string scene;
  std::vector<Bar> bars;
  double worst() const { return bars[0].ms / bars[1].ms; }
};

// Worst first.
std::vector<Group> groups_of(const Records& records, const std::string& size) {
  std::vector<Group> groups;
  for (const std::string& scene : scene_names()) {
    Group group{scene, {}};
    for (const Series& series : kSeries) {
      const double ms = records.value("frames", scene, size, series.candidate, series.measure);
      if (!std::isnan(ms)) group.bars.push_back({series, ms});
    }
    if (group.bars.size() == kSeries.size()) groups.push_back(std::move(group));
  }
  std::ranges::stable_sort(groups, std::ranges::greater(), &Group::worst);
  return groups;
}

// Drawn at twice the size and scaled down at the end, for smooth edges.
constexpr int kScale = 2;
constexpr int kWidth = 1000, kLeft = 250, kRight = 845, kTop = 92, kBarHeight = 17, kBarStep = 21, kGap = 22;

class Sheet {
 public:
  explicit Sheet(int height) : image_(height * kScale, kWidth * kScale, CV_8UC3, kPaper) {}

  enum class Side { left, right, middle };
  void text(cv::Point at, const std::string& words, double size, const cv::Scalar& colour,
            Side side = Side::left) {
    constexpr int font = cv::FONT_HERSHEY_SIMPLEX;
    const double scale = size * kScale / 22;
    const int thickness = kScale;
    int baseline = 0;
    const int width = cv::getTextSize(words, font, scale, thickness, &baseline).width;
    const int shift = side == Side::left ? 0 : side == Side::right ? width : width / 2;
    cv::putText(image_, words, cv::Point(at.x * kScale - shift, at.y * kScale), font, scale, colour,
                thickness, cv::LINE_AA);
  }
  void box(cv::Rect area, const cv::Scalar& colour) {
    const cv::Rect scaled(area.tl() * kScale, area.size() * kScale);
    cv::rectangle(image_, scaled, colour, cv::FILLED);
  }
  void write(const std::string& file) const {
    cv::Mat reduced;
    cv::resize(image_, reduced, {}, 1.0 / kScale, 1.0 / kScale, cv::INTER_AREA);
    if (!cv::imwrite(file, reduced)) throw std::runtime_error("cannot write " + file);
  }

 private:
  cv::Mat image_;
};

class Axis {
 public:
  explicit Axis(const std::vector<Group>& groups) {
    for (const Group& group : groups) {
      for (const Bar& bar : group.bars) most_ = std::max(most_, bar.ms);
    }
  }
  int at(double ms) const { return kLeft + static_cast<int>(std::lround(ms / most_ * (kRight - kLeft))); }
  void draw(Sheet& sheet, int bottom) const {
    const int step = most_ > 50 ? 10 : most_ > 20 ? 5 : 2;
    for (int mark = 0; mark <= most_; mark += step) {
      sheet.box({at(mark), kTop - 8, 1, bottom - kTop + 8}, kLine);
      sheet.text({at(mark), kTop - 14}, std::to_string(mark), 12, kFaint, Sheet::Side::middle);
    }
  }

 private:
  double most_ = 1;
};

void draw_group(Sheet& sheet, const Axis& axis, const Group& group, int top) {
  sheet.text({24, top + 14}, group.scene, 17, kInk);
  for (const Bar& bar : group.bars) {
    const bool ours = bar.series.candidate == kPlugin;
    const int end = axis.at(bar.ms);
    sheet.text({kLeft - 10, top + 13}, bar.series.label, 12, ours ? kOurs : kInk, Sheet::Side::right);
    sheet.box({kLeft, top, std::max(end - kLeft, 2), kBarHeight}, bar.series.colour);
    sheet.text({end + 7, top + 13}, figure(bar.ms) + " ms", 12, ours ? kOurs : kInk);
    top += kBarStep;
  }
}

}  // namespace

void draw_picture(const Records& records, const std::string& size, const std::string& note,
                  const std::string& file) {
  const std::vector<Group> groups = groups_of(records, size);
  int bottom = kTop;
  for (const Group& group : groups) bottom += static_cast<int>(group.bars.size()) * kBarStep + kGap;
  Sheet sheet(bottom + 34);
  const Axis axis(groups);
  sheet.text({24, 34}, "Time for one frame of " + size + " on one core", 20, kInk);
  sheet.text({24, 57}, "milliseconds; lightmotion: complete work; shorter is faster", 13, kFaint);
  axis.draw(sheet, bottom - kGap / 2);
  int top = kTop;
  for (const Group& group : groups) {
    draw_group(sheet, axis, group, top);
    top += static_cast<int>(group.bars.size()) * kBarStep + kGap;
  }
  sheet.text({24, bottom + 14}, note, 11, kFaint);
  sheet.write(file);
}

}  // namespace lm::bench
