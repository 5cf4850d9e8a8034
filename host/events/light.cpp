#include "host/events/light.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/events/box.h"

namespace lm::host::events {
namespace {

using namespace std::chrono_literals;

constexpr int kCellSide = 10;             // samples
constexpr auto kSpan = 500ms;             // longest duration of a lighting change
constexpr auto kAdaptation = 5s;          // time in which there may still be boxes after a change
constexpr double kCellStep = 3;           // minimum change of a cell's mean, in grey levels
constexpr double kTexture = 3;            // standard deviation, in grey levels, above that of noise
constexpr double kAlike = 0.7;            // correlation of a texture with itself after a lighting change
constexpr double kLeastPart = 0.2;        // minimum share of the watched cells
constexpr double kWholeFrame = 0.8;       // ... if too few of them have texture
constexpr double kLeastUnderBoxes = 0.1;  // of the frame

constexpr int kColumns = LightWatch::kAcross * kCellSide;
constexpr int kRows = LightWatch::kDown * kCellSide;

std::uint8_t grey(const std::uint8_t* pixel) {
  return static_cast<std::uint8_t>((29 * pixel[0] + 150 * pixel[1] + 77 * pixel[2] + 128) / 256);  // BT.601
}

// The nearest pixels, grey.
cv::Mat samples_of(const cv::Mat& image) {
  cv::Mat samples(kRows, kColumns, CV_8U);
  const int step = image.channels();
  std::array<int, kColumns> columns{};
  for (int x = 0; x < kColumns; ++x) columns[static_cast<std::size_t>(x)] = x * image.cols / kColumns * step;
  for (int y = 0; y < kRows; ++y) {
    const auto* from = image.ptr<std::uint8_t>(y * image.rows / kRows);
    auto* to = samples.ptr<std::uint8_t>(y);
    for (const int column : columns) *to++ = step == 1 ? from[column] : grey(from + column);
  }
  return samples;
}

// Calls `use` with the first sample of each row of a cell in both pictures.
template <typename Use>
void rows_of(std::size_t cell, const cv::Mat& one, const cv::Mat& other, const Use& use) {
  const int number = static_cast<int>(cell);
  const int column = number % LightWatch::kAcross * kCellSide;
  const int row = number / LightWatch::kAcross * kCellSide;
  for (int y = row; y < row + kCellSide; ++y)
    use(one.ptr<std::uint8_t>(y) + column, other.ptr<std::uint8_t>(y) + column);
}

// Of the products of the samples.
int sum_of_products(std::size_t cell, const cv::Mat& one, const cv::Mat& other) {
  int sum = 0;
  rows_of(cell, one, other, [&](const std::uint8_t* a, const std::uint8_t* b) {
    for (int x = 0; x < kCellSide; ++x) sum += a[x] * b[x];
  });
  return sum;
}

int sum_of(std::size_t cell, const cv::Mat& samples) {
  int sum = 0;
  rows_of(cell, samples, samples, [&](const std::uint8_t* row, const std::uint8_t*) {
    for (int x = 0; x < kCellSide; ++x) sum += row[x];
  });
  return sum;
}

// The share of the frame inside the box and over such cells.
template <typename Cells>
double area_over(const Cells& cells, const cv::Rect2d& box) {
  const cv::Rect2d inside = box & cv::Rect2d(0, 0, 1, 1);
  double area = 0;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (!cells[i]) continue;
    const int number = static_cast<int>(i);
    const int row = number / LightWatch::kAcross;
    const int column = number % LightWatch::kAcross;
    const cv::Rect2d place(static_cast<double>(column) / LightWatch::kAcross,
                           static_cast<double>(row) / LightWatch::kDown, 1.0 / LightWatch::kAcross,
                           1.0 / LightWatch::kDown);
    area += (inside & place).area();
  }
  return area;
}

}  // namespace

LightWatch::LightWatch(const detector::Regions& regions) {
  for (std::size_t i = 0; i < kCells; ++i) {
    const int number = static_cast<int>(i);
    const int row = number / kAcross;
    const int column = number % kAcross;
    watched_[i] = regions.watched({(column + 0.5) / kAcross, (row + 0.5) / kDown});
  }
  if (watched_.none()) watched_.set();
}

void LightWatch::forget() {
  looks_.clear();
  lit_.reset();
  change_.reset();
  shown_until_ = -1s;
}

LightWatch::Look LightWatch::look_at(const cv::Mat& image, std::chrono::microseconds time) {
  Look look{time, samples_of(image), {}, 0};
  for (std::size_t i = 0; i < kCells; ++i) {
    look.sums[i] = sum_of(i, look.samples);
    look.brightness += look.sums[i];
  }
  look.brightness /= static_cast<double>(look.samples.total());
  return look;
}

// The textures are compared where the mean has changed.
LightWatch::Comparison LightWatch::compare(const Look& before, const Look& now, std::size_t cell) {
  constexpr double kSamples = kCellSide * kCellSide;
  const double mean[] = {before.sums[cell] / kSamples, now.sums[cell] / kSamples};
  Comparison result{mean[1] - mean[0]};
  if (std::abs(result.step) <= kCellStep) return result;
  const auto covariance = [&](const cv::Mat& one, const cv::Mat& other, double product_of_means) {
    return sum_of_products(cell, one, other) / kSamples - product_of_means;
  };
  const double variance[] = {covariance(before.samples, before.samples, mean[0] * mean[0]),
                             covariance(now.samples, now.samples, mean[1] * mean[1])};
  const double common = covariance(before.samples, now.samples, mean[0] * mean[1]);
  const double scale = std::sqrt(std::max(0.0, variance[0] * variance[1]));
  result.textured = std::max(variance[0], variance[1]) > kTexture * kTexture;
  result.alike = scale > 0 && common / scale > kAlike;
  return result;
}

LightWatch::Cells LightWatch::changed_cells(const Look& before, const Look& now) const {
  Cells changed[2];  // darker, brighter
  Cells textured;
  Cells alike;
  for (std::size_t i = 0; i < kCells; ++i) {
    if (!watched_[i]) continue;
    const Comparison result = compare(before, now, i);
    if (std::abs(result.step) <= kCellStep) continue;
    changed[result.step > 0 ? 1 : 0].set(i);
    textured[i] = result.textured;
    alike[i] = result.alike;
  }
  const Cells& most = changed[changed[1].count() >= changed[0].count() ? 1 : 0];
  const auto with_texture = static_cast<double>((most & textured).count());
  const auto kept = static_cast<double>((most & textured & alike).count());
  const double part = static_cast<double>(most.count()) / static_cast<double>(watched_.count());
  const bool texture_decides = with_texture * 4 >= static_cast<double>(most.count());
  const bool light =
      texture_decides ? part >= kLeastPart && kept >= kAlike * with_texture : part >= kWholeFrame;
  return light ? most & (alike | ~textured) : Cells();
}

void LightWatch::track_change(const Look& now) {
  if (now.time > lit_until_) {
    lit_.reset();
    change_.reset();
  }
  if (looks_.empty()) return;
  const Look& before = looks_.front();
  const Cells cells = changed_cells(before, now);
  if (cells.none()) return;
  lit_ |= cells;
  lit_until_ = now.time + kAdaptation;
  const double share = static_cast<double>(lit_.count()) / static_cast<double>(watched_.count());
  change_ = {change_ ? change_->before : before.brightness, now.brightness, share};
}

// True if at least half of the box lies where the lighting changed, or if the box covers at least half of
// that area: it may have been joined with boxes of moving objects.
bool LightWatch::made_by_light(const cv::Rect2d& box) const {
  const double over = area_over(lit_, box);
  const double own = (box & cv::Rect2d(0, 0, 1, 1)).area();
  const double lit = static_cast<double>(lit_.count()) / kCells;
  return over > 0 && over >= std::min(own, lit) / 2;
}

// Boxes of light are kept when they cover enough, and then until they are gone.
void LightWatch::judge_examined(Observation& seen) {
  const double share = share_under(boxes_of_kind(seen.boxes, EventKind::kLight));
  if (share >= kLeastUnderBoxes) shown_until_ = seen.time + kSpan;
  if (share == 0 || seen.time > shown_until_) {
    seen.boxes = boxes_of_kind(seen.boxes, EventKind::kMotion);
    return;
  }
  shown_until_ = seen.time + kSpan;
  seen.light = change_.value_or(LightChange{looks_.front().brightness, seen.brightness, share});
}

void LightWatch::judge(Observation& seen) {
  if (std::ranges::any_of(seen.boxes, &Box::examined)) return judge_examined(seen);
  if (lit_.none()) return;
  for (Box& box : seen.boxes) box.by_light = made_by_light(box.area);
  if (share_under(boxes_of_kind(seen.boxes, EventKind::kLight)) < kLeastUnderBoxes) {
    for (Box& box : seen.boxes) box.by_light = false;
  } else {
    seen.light = change_;
  }
}

void LightWatch::look(const cv::Mat& image, Observation& seen) {
  Look now = look_at(image, seen.time);
  seen.brightness = now.brightness;
  // One from before the span is kept, so that there is always one, however low the frame rate.
  while (looks_.size() > 1 && looks_[1].time <= now.time - kSpan) looks_.pop_front();
  track_change(now);
  judge(seen);
  looks_.push_back(std::move(now));
}

}  // namespace lm::host::events
