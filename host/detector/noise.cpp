#include "host/detector/noise.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numeric>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

// ---- measuring --------------------------------------------------------------------------------------------

constexpr int kAcross = 40;  // groups
constexpr int kDown = 30;
constexpr int kGroup = 4;                           // pixels, two by two
constexpr int kClipped = 3;                         // grey levels from both ends
constexpr std::array<int, 2> kBrightness{64, 144};  // where medium and bright begin
constexpr int kFewestFrames = 8;
constexpr double kFewestSamples = 500;
constexpr double kFewestPart = 0.1;  // of the samples, for a brightness to count
constexpr auto kAge = 1s;            // after which what was measured counts for less
constexpr float kKept = 0.6F;

// Median of the absolute value of a normal variable with the deviation 1.
constexpr double kMedianOfNormal = 0.6745;
// Variance of the difference of two rounded numbers, by rounding alone.
constexpr double kRounding = 1.0 / 6;

// Where half of the values are below, each spread over the unit around it.
double median_of(const std::array<float, 256>& counts, double all) {
  double below = 0;
  for (std::size_t value = 0; value < counts.size(); ++value) {
    const double here = counts[value];
    if (below + here >= all / 2 && here > 0) {
      const double begin = value == 0 ? 0 : static_cast<double>(value) - 0.5;
      const double width = value == 0 ? 0.5 : 1;
      return begin + width * (all / 2 - below) / here;
    }
    below += here;
  }
  return 0;
}

constexpr int kDifferences = 511;  // of two grey levels: -255 to 255

std::size_t level_of(int brightness) {
  return static_cast<std::size_t>(brightness >= kBrightness[0]) +
         static_cast<std::size_t>(brightness >= kBrightness[1]);
}

// The place of the median of all rows together.
template <std::size_t kRows>
int median_of_all(const std::array<std::array<int, kDifferences>, kRows>& counts) {
  std::array<int, kDifferences> sums{};
  for (const auto& row : counts)
    std::transform(row.begin(), row.end(), sums.begin(), sums.begin(), std::plus());
  const int all = std::accumulate(sums.begin(), sums.end(), 0);
  int place = 0;
  for (int below = sums[0]; 2 * below < all; below += sums[static_cast<std::size_t>(place)]) ++place;
  return place;
}

double weight_of(const std::array<float, 256>& counts) {
  return std::accumulate(counts.begin(), counts.end(), 0.0);
}

// ---- sensitivity ------------------------------------------------------------------------------------------

// Up to these levels of noise, at most a thousandth of a still picture is foreground; one for each of the
// sensitivities 4, 3 and 2.
constexpr std::array<double, 3> kMostNoise{3.5, 5.5, 8};
constexpr double kMargin = 0.85;  // before it becomes more sensitive again
constexpr auto kNoisier = 1s;
constexpr auto kCalmer = 5s;

}  // namespace

std::vector<std::uint8_t> NoiseMeter::sampled(const cv::Mat& picture) const {
  std::vector<std::uint8_t> samples;
  const auto channels = static_cast<std::size_t>(picture.channels());
  samples.reserve(std::size_t{kAcross} * kDown * kGroup * channels);
  for (int row = 0; row < kDown; ++row) {
    const int y = std::min((2 * row + 1) * picture.rows / (2 * kDown), std::max(0, picture.rows - 2));
    for (int column = 0; column < kAcross; ++column) {
      const int x = std::min((2 * column + 1) * picture.cols / (2 * kAcross), std::max(0, picture.cols - 2));
      for (int pixel = 0; pixel < kGroup; ++pixel) {
        const int at_x = std::min(x + pixel % 2, picture.cols - 1);
        const int at_y = std::min(y + pixel / 2, picture.rows - 1);
        const std::uint8_t* value = picture.ptr(at_y) + static_cast<std::size_t>(at_x) * channels;
        samples.insert(samples.end(), value, value + channels);
      }
    }
  }
  return samples;
}

// Adds the differences of a channel to what was measured.
void NoiseMeter::compare(const std::vector<std::uint8_t>& now, int channel) {
  std::array<std::array<int, kDifferences>, kLevels> counts{};  // by level and difference
  const auto step = static_cast<std::size_t>(channels_);
  for (std::size_t group = 0; group < repeated_.size(); ++group) {
    if (repeated_[group]) continue;
    const std::size_t first = group * kGroup * step + static_cast<std::size_t>(channel);
    for (std::size_t at = first; at < first + kGroup * step; at += step) {
      const int value = now[at];
      const int before = before_[at];
      if (std::min(value, before) < kClipped || std::max(value, before) > 255 - kClipped) continue;
      const int difference = value - before + 255;
      ++counts[level_of((value + before) / 2)][static_cast<std::size_t>(difference)];
    }
  }
  const int common = median_of_all(counts);  // of the whole picture
  for (std::size_t level = 0; level < counts.size(); ++level) {
    for (int at = 0; at < kDifferences; ++at) {
      const int size = std::min(std::abs(at - common), 255);
      differences_[static_cast<std::size_t>(channel)][level][static_cast<std::size_t>(size)] +=
          static_cast<float>(counts[level][static_cast<std::size_t>(at)]);
    }
  }
}

void NoiseMeter::age(microseconds time) {
  if (time - aged_ < kAge && time >= aged_) return;
  aged_ = time;
  for (auto& levels : differences_) {
    for (Histogram& counts : levels) {
      for (float& count : counts) count *= kKept;
    }
  }
}

void NoiseMeter::add(const cv::Mat& picture, microseconds time) {
  std::vector<std::uint8_t> now = sampled(picture);
  channels_ = picture.channels();
  if (before_.size() == now.size()) {
    age(time);
    const std::size_t bytes = static_cast<std::size_t>(kGroup) * static_cast<std::size_t>(channels_);
    repeated_.assign(now.size() / bytes, false);
    std::size_t repeated = 0;
    for (std::size_t group = 0; group < repeated_.size(); ++group) {
      const auto begin = static_cast<std::ptrdiff_t>(group * bytes);
      repeated_[group] =
          std::equal(now.begin() + begin, now.begin() + begin + static_cast<std::ptrdiff_t>(bytes),
                     before_.begin() + begin);
      if (repeated_[group]) ++repeated;
    }
    // Where most of the picture is repeated, it is quiet.
    if (2 * repeated > repeated_.size()) repeated_.assign(repeated_.size(), false);
    for (int channel = 0; channel < channels_; ++channel) compare(now, channel);
    ++frames_;
  }
  before_ = std::move(now);
}

std::optional<double> NoiseMeter::sigma(int channel) const {
  if (frames_ < kFewestFrames) return std::nullopt;
  const auto& levels = differences_[static_cast<std::size_t>(channel)];
  std::array<double, kLevels> weights{};
  std::transform(levels.begin(), levels.end(), weights.begin(), weight_of);
  const double all = std::accumulate(weights.begin(), weights.end(), 0.0);
  double largest = 0;
  for (std::size_t level = 0; level < levels.size(); ++level) {
    if (weights[level] < std::max(kFewestSamples, kFewestPart * all)) continue;
    const double deviation = median_of(levels[level], weights[level]) / kMedianOfNormal;
    largest = std::max(largest, std::sqrt(std::max(0.0, (deviation * deviation - kRounding) / 2)));
  }
  return largest;
}

std::optional<double> NoiseMeter::sigma() const {
  std::optional<double> largest;
  for (int channel = 0; channel < channels_; ++channel) largest = std::max(largest, sigma(channel));
  return largest;
}

int NoiseRule::sensitivity_for(double sigma) {
  return 4 - static_cast<int>(std::count_if(kMostNoise.begin(), kMostNoise.end(),
                                            [&](double most) { return sigma > most; }));
}

std::optional<int> NoiseRule::update(double sigma, microseconds time) {
  const int noisier = sensitivity_for(sigma);
  const int calmer = sensitivity_for(sigma / kMargin);
  const int wanted = noisier < sensitivity_ ? noisier : std::max(calmer, sensitivity_);
  if (wanted == sensitivity_) {
    other_since_.reset();
    return std::nullopt;
  }
  if (!other_since_) other_since_ = time;
  if (time - *other_since_ < (wanted < sensitivity_ ? microseconds(kNoisier) : microseconds(kCalmer)))
    return std::nullopt;
  other_since_.reset();
  return sensitivity_ = wanted;
}

}  // namespace lm::host::detector
