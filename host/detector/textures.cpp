#include "host/detector/textures.h"

#include <algorithm>
#include <array>
#include <vector>

namespace lm::host::detector {
namespace {

constexpr int kReach = 4;  // of the window in which textures are compared
constexpr int kRows = 2 * kReach + 1;
constexpr int kLargest = 60;  // detail, 0.12 octaves; larger ones count as this: no edge outweighs all
constexpr float kTextureKept = 0.6F;            // of the texture
constexpr float kAnother = 0.4F;                // of it, up to which it is another texture
constexpr float kSure = 0.2F;                   // standard error with which it is
constexpr float kFewestCompared = 20;           // pixels in the window
constexpr float kTextured = 2;                  // variance of the texture against that of the noise
constexpr float kGroundNoise = 0.45F;           // of the average, against that of a frame: sqrt(1 / 5)
constexpr float kSameColour = 0.03F * kOctave;  // difference of the channels' gains
constexpr float kErrors = 4.2F;                 // standard errors, for a texture that is no chance
constexpr float kErrorsSameColour = 3.2F;

// Kept: 16 bits hold sums of kRows products of details.
static_assert(kRows * kLargest * kLargest < 32768);

// What is summed over the window, in this order.
enum { kCount, kOwn, kCommon, kOther, kSums };

struct Products {
  std::array<Gains::Plane, kSums> of;  // 1 and the products of the details; 0 where nothing is compared
};

int limited(int detail) { return std::clamp(detail, -kLargest, kLargest); }

// The details are what a window of 3 by 3 has: those of the ground, and by what those of the picture differ.
Products products_of(const Gains& gains) {
  const cv::Size size = gains.ground.size();
  const Gains::Plane sums = sums_of_nine(gains.ground);
  Products products{{Gains::Plane(size), Gains::Plane(size), Gains::Plane(size), Gains::Plane(size)}};
  for (int y = 0; y < size.height; ++y) {
    const std::int16_t* ground = gains.ground[y];
    const std::int16_t* sum = sums[y];
    const std::int16_t* step = gains.step[y];
    const std::int16_t* gain = gains.gain[y];
    const std::uint8_t* may_be = gains.may_be[y];
    const std::uint8_t* peak = gains.peak[y];
    std::int16_t* count = products.of[kCount][y];
    std::int16_t* squares = products.of[kOwn][y];
    std::int16_t* common = products.of[kCommon][y];
    std::int16_t* others = products.of[kOther][y];
    const int width = size.width;
#pragma omp simd
    for (int x = 0; x < width; ++x) {
      const int compared = ((may_be[x] != 0) & (peak[x] < kSaturated)) ? 1 : 0;
      // A sum beyond 16 bits has wrapped round; the difference is right.
      const int own = limited(ninth(narrow(9 * ground[x] - sum[x]))) * compared;
      const int other = limited(step[x] - gain[x]) * compared;
      count[x] = narrow(compared);
      squares[x] = narrow(own * own);
      common[x] = narrow(own * other);
      others[x] = narrow(other * other);
    }
  }
  return products;
}

// The sums of the columns of a window that moves down, with zeros on both sides.
class Columns {
 public:
  explicit Columns(const Gains::Plane& of)
      : of_(of), sums_(static_cast<std::size_t>(of.cols + 2 * kReach)), threes_(sums_.size()) {
    for (int y = 0; y < kReach; ++y) add(y, 1);
  }

  // Those of the window around each pixel of row `y`; rows in order.
  void sums_at(int y, std::vector<float>& sums) {
    add(y + kReach, 1);
    add(y - kReach - 1, -1);
    const int width = of_.cols;
    const std::int16_t* column = sums_.data();
    int* three = threes_.data();
    float* sum = sums.data();
    for (int x = 0; x < width + kRows - 3; ++x) three[x] = column[x] + column[x + 1] + column[x + 2];
    for (int x = 0; x < width; ++x) sum[x] = static_cast<float>(three[x] + three[x + 3] + three[x + 6]);
  }

 private:
  void add(int y, int sign) {
    if (y < 0 || y >= of_.rows) return;
    const std::int16_t* row = of_[y];
    std::int16_t* sum = sums_.data() + kReach;
    if (sign > 0) {
      for (int x = 0; x < of_.cols; ++x) sum[x] = narrow(sum[x] + row[x]);
    } else {
      for (int x = 0; x < of_.cols; ++x) sum[x] = narrow(sum[x] - row[x]);
    }
  }

  const Gains::Plane& of_;
  std::vector<std::int16_t> sums_;
  std::vector<int> threes_;
};

using Rows = std::array<std::vector<float>, kSums>;

// The details of the picture are regressed on those of the ground: the slope is 1 for the same texture in
// any light, and 0 for another one.
void decide(const Rows& sums, const Gains& gains, float noise, int y, Textures& textures) {
  const float* count = sums[kCount].data();
  const float* own = sums[kOwn].data();
  const float* common = sums[kCommon].data();
  const float* other = sums[kOther].data();
  const std::int16_t* base = gains.base[y];
  const std::int16_t* colour = gains.colour[y];
  const std::uint8_t* may_be = gains.may_be[y];
  std::uint8_t* kept = textures.kept[y];
  std::uint8_t* another = textures.another[y];
  const int width = gains.ground.cols;
#pragma omp simd
  for (int x = 0; x < width; ++x) {
    const float by_noise = count[x] * noise * noise / static_cast<float>(base[x] * base[x]);
    const float variance = own[x] - by_noise;
    const float slope = own[x] + common[x];  // times the variance
    const float error =
        other[x] * variance / (count[x] > 1 ? count[x] : 1);  // its square, times the variance's
    const float errors = colour[x] <= 9 * kSameColour ? kErrorsSameColour : kErrors;
    const bool textured =
        (may_be[x] != 0) & (count[x] >= kFewestCompared) & (variance > kTextured * by_noise);
    const bool is_kept = (slope > kTextureKept * variance) & (slope * slope > errors * errors * error);
    const bool is_another = (slope < kAnother * variance) & (error < kSure * kSure * variance * variance);
    kept[x] = (textured & is_kept) ? 255 : 0;
    another[x] = (textured & is_another) ? 255 : 0;
  }
}

}  // namespace

Textures textures_of(const Gains& gains, double sigma) {
  const cv::Size size = gains.ground.size();
  const float noise = kGroundNoise * noise_at_one(sigma);
  const Products products = products_of(gains);
  std::vector<Columns> columns(products.of.begin(), products.of.end());
  Rows sums;
  sums.fill(std::vector<float>(static_cast<std::size_t>(size.width)));
  Textures textures{cv::Mat_<std::uint8_t>(size), cv::Mat_<std::uint8_t>(size)};
  for (int y = 0; y < size.height; ++y) {
    for (std::size_t i = 0; i < kSums; ++i) columns[i].sums_at(y, sums[i]);
    decide(sums, gains, noise, y, textures);
  }
  return textures;
}

}  // namespace lm::host::detector
