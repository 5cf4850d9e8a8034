#include <array>
#include <cmath>
#include <cstdlib>
#include <new>
#include <opencv2/imgproc.hpp>

#include "bench/engine.h"
#include "bench/sections/sections.h"
#include "bench/table.h"
#include "host/base/standard_streams.h"

namespace lm::bench {
namespace {

constexpr std::array kCounts = {0, 10, 100, 1000};
constexpr int kTimes = 15;
// Three layers are eroded on every side; the rest is large enough to be an object.
constexpr int kSide = 14;

// A grid of squares, as far apart as possible.
cv::Mat mask_with(int count) {
  cv::Mat mask(kFullHd, CV_8UC1, cv::Scalar(0));
  if (count == 0) return mask;
  const int columns = static_cast<int>(std::ceil(std::sqrt(count * kFullHd.aspectRatio())));
  const int rows = (count + columns - 1) / columns;
  for (int i = 0; i < count; ++i) {
    const int x = (2 * (i % columns) + 1) * mask.cols / (2 * columns) - kSide / 2;
    const int y = (2 * (i / columns) + 1) * mask.rows / (2 * rows) - kSide / 2;
    mask(cv::Rect(x, y, kSide, kSide)) = 255;
  }
  return mask;
}

// The engine needs aligned masks and modifies them.
class Scratch {
 public:
  explicit Scratch(cv::Size size) : bytes_(static_cast<std::size_t>(size.area())) {
    void* memory = nullptr;
    if (posix_memalign(&memory, 32, bytes_) != 0) throw std::bad_alloc();
    data_.reset(static_cast<std::uint8_t*>(memory));
  }
  std::uint8_t* filled(const cv::Mat& mask) {
    std::copy_n(mask.data, bytes_, data_.get());
    return data_.get();
  }

 private:
  struct Free {
    void operator()(void* memory) const { std::free(memory); }
  };
  std::size_t bytes_;
  std::unique_ptr<std::uint8_t, Free> data_;
};

}  // namespace

void measure_objects(Records& records) {
  const auto engine = make_engine(kFullHd);
  {
    const host::base::CapturedStream chatter(stderr);
    learn(*engine, cv::Mat(kFullHd, CV_8UC3, cv::Scalar::all(90)), 0);
  }
  std::array<cv::Mat, kCounts.size()> masks;
  std::array<std::vector<double>, kCounts.size()> times;
  for (std::size_t i = 0; i < kCounts.size(); ++i) masks[i] = mask_with(kCounts[i]);
  Scratch scratch(kFullHd);
  for (int n = 0; n < kTimes; ++n) {
    for (std::size_t i = 0; i < kCounts.size(); ++i) {
      std::uint8_t* const mask = scratch.filled(masks[i]);
      times[i].push_back(milliseconds_of([&] { engine->genFgObj_ncv(mask); }));
    }
  }

  const Table table(
      "Separate objects in the mask, 1920x1080: milliseconds from mask to boxes, and more than without "
      "objects",
      {"objects", "ms", "more"}, 1);
  for (std::size_t i = 0; i < kCounts.size(); ++i) {
    const double time = median(times[i]);
    const double more = time - median(times[0]);
    const std::string count = std::to_string(kCounts[i]);
    records.add({"objects", "", text_of(kFullHd), count, "objects_ms", time});
    records.add({"objects", "", text_of(kFullHd), count, "beyond_none_ms", more});
    table.row({count, figure(time), figure(more)});
  }
}

}  // namespace lm::bench
