#include "bench/scene.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

namespace lm::bench {
namespace {

std::uint8_t clamped(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

// A static mosaic of tiles with a gradient and grain: values from 50 to 200.
cv::Mat texture(cv::Size size, std::uint64_t seed) {
  constexpr int tile = 24;
  Random random(seed);
  cv::Mat picture(size, CV_8UC3);
  cv::Mat_<cv::Vec3i> tiles(size.height / tile + 1, size.width / tile + 1);
  for (cv::Vec3i& colour : tiles) {
    for (int c = 0; c < 3; ++c) colour[c] = 60 + random.below(100);
  }
  picture.forEach<cv::Vec3b>([&](cv::Vec3b& pixel, const int* at) {
    const cv::Vec3i& colour = tiles(at[0] / tile, at[1] / tile);
    const int grain = at[0] % tile + (at[0] * 7 + at[1] * 13) % 9 - 10;
    for (int c = 0; c < 3; ++c) pixel[c] = clamped(colour[c] + grain);
  });
  return picture;
}

Script quiet(cv::Size size) {
  return {.next = [picture = texture(size, 1)] { return &picture; }};
}

Script noisy(cv::Size size) {
  Script script = quiet(size);
  script.noise = 2.5;
  return script;
}

// Pastes `patch` at column `x` of `frame`, wrapping around at the right edge.
void paste_around(const cv::Mat& patch, cv::Mat& frame, int x, int y) {
  const int inside = std::min(patch.cols, frame.cols - x);
  patch.colRange(0, inside).copyTo(frame({x, y, inside, patch.rows}));
  if (inside == patch.cols) return;
  patch.colRange(inside, patch.cols).copyTo(frame({0, y, patch.cols - inside, patch.rows}));
}

// Twenty patches of a hundredth of the frame each, two per row, rows moving alternately right and left. After
// `steps` frames each patch has reached the position of the next one. The patches' contents change with every
// frame, so that models cannot learn them.
class Busy {
 public:
  explicit Busy(cv::Size size) : picture_(texture(size, 1)), contents_(texture(size, 2)) {}

  const cv::Mat* next() {
    constexpr int columns = 2, rows = 10, steps = 16;
    if (number_++ == 0) return &picture_;
    const int n = (number_ - 2) % steps;
    const cv::Size patch(picture_.cols / 9, picture_.rows * 9 / 100);
    picture_.copyTo(frame_);
    for (int i = 0; i < columns * rows; ++i) {
      const int row = i / columns;
      const int step = i % columns * steps + (row % 2 == 0 ? n : steps - n);
      const int x = step * frame_.cols / (columns * steps) % frame_.cols;
      const int y = (2 * row + 1) * frame_.rows / (2 * rows) - patch.height / 2;
      const cv::Point from(random_.below(frame_.cols - patch.width),
                           random_.below(frame_.rows - patch.height));
      paste_around(contents_(cv::Rect(from, patch)), frame_, x, y);
    }
    return &frame_;
  }

 private:
  cv::Mat picture_, contents_, frame_;
  Random random_{3};
  int number_ = 0;
};

Script busy(cv::Size size) {
  return {.next = [busy = std::make_shared<Busy>(size)] { return busy->next(); }, .partly_moving = true};
}

// The lighting of the whole picture changes on every fourth frame.
Script lights(cv::Size size) {
  constexpr int apart = 4;
  constexpr std::array steps = {0, 40, -15, 25};
  const cv::Mat picture = texture(size, 1);
  std::array<cv::Mat, steps.size()> lit;
  for (std::size_t i = 0; i < steps.size(); ++i) lit[i] = picture + cv::Scalar::all(steps[i]);
  return {.next =
              [lit, number = 0]() mutable {
                const auto n = static_cast<std::size_t>(std::max(number++ - 1, 0));
                return &lit[n / apart % lit.size()];
              },
          .cycle = apart};
}

// Every byte of every frame differs by at least 64 from the previous frame.
Script storm(cv::Size size) {
  constexpr int least = 64;
  return {.next =
              [picture = texture(size, 1), random = Random(201), first = true]() mutable {
                if (std::exchange(first, false)) return &std::as_const(picture);
                const std::size_t bytes = picture.total() * picture.elemSize();
                std::uint64_t bits = 0;
                for (std::size_t i = 0; i < bytes; ++i) {
                  if (i % 8 == 0) bits = random.next();
                  picture.data[i] =
                      static_cast<std::uint8_t>(picture.data[i] + least + static_cast<int>(bits & 0x7F));
                  bits >>= 8;
                }
                return &std::as_const(picture);
              },
          .noise = 0};
}

constexpr std::array<std::pair<const char*, Script (*)(cv::Size)>, 6> kScenes = {{{"quiet", quiet},
                                                                                  {"noisy", noisy},
                                                                                  {"street", street},
                                                                                  {"busy", busy},
                                                                                  {"lights", lights},
                                                                                  {"storm", storm}}};

// More values than a frame has bytes, so that each frame can begin elsewhere.
cv::Mat gaussian_noise(std::size_t values, double deviation) {
  cv::Mat noise(1, static_cast<int>(values), CV_8S);
  cv::RNG(1).fill(noise, cv::RNG::NORMAL, 0, deviation);
  return noise;
}
constexpr int kNoiseOffsets = 1 << 20;

}  // namespace

Scene::Scene(std::string name, cv::Size size, Script script)
    : name_(std::move(name)), size_(size), script_(std::move(script)), frame_(size, CV_8UC3) {
  const std::size_t bytes = frame_.total() * frame_.elemSize();
  if (script_.noise > 0) noise_ = gaussian_noise(bytes + kNoiseOffsets, script_.noise);
}

const cv::Mat* Scene::next() {
  const cv::Mat* const picture = script_.next();
  if (picture == nullptr || noise_.empty()) return picture;
  const std::int8_t* const noise = noise_.ptr<std::int8_t>() + offsets_.below(kNoiseOffsets);
  const std::size_t bytes = frame_.total() * frame_.elemSize();
  for (std::size_t i = 0; i < bytes; ++i) frame_.data[i] = clamped(picture->data[i] + noise[i]);
  return &frame_;
}

std::vector<std::string> scene_names() {
  std::vector<std::string> names;
  names.reserve(kScenes.size());
  for (const auto& [name, make] : kScenes) names.emplace_back(name);
  return names;
}

Scene make_scene(const std::string& name, cv::Size size) {
  for (const auto& [known, make] : kScenes) {
    if (name == known) return {name, size, make(size)};
  }
  throw std::invalid_argument("no scene " + name);
}

}  // namespace lm::bench
