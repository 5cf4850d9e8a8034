#include "bench/scene.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "bench/random.h"

namespace lm::bench {
namespace {

constexpr int kFrames = 16;

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

// Noise of a good sensor: each byte changes by -2 to 2, below every threshold in use.
cv::Mat with_noise(const cv::Mat& picture, std::uint64_t seed) {
  constexpr int strength = 2;
  Random random(seed);
  cv::Mat noisy(picture.size(), picture.type());
  const std::size_t bytes = picture.total() * picture.elemSize();
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    if (i % 8 == 0) bits = random.next();
    const int draw = static_cast<int>(bits & 0xFF) * (2 * strength + 1) >> 8;
    bits >>= 8;
    noisy.data[i] = clamped(picture.data[i] + draw - strength);
  }
  return noisy;
}

Scene quiet(cv::Size size) {
  const cv::Mat picture = texture(size, 1);
  Scene scene;
  scene.opening = with_noise(picture, 100);
  for (int n = 0; n < kFrames; ++n)
    scene.ring.push_back(with_noise(picture, 101 + static_cast<std::uint64_t>(n)));
  return scene;
}

// Pastes `patch` at column `x` of `frame`, wrapping around at the right edge.
void paste_around(const cv::Mat& patch, cv::Mat& frame, int x, int y) {
  const int inside = std::min(patch.cols, frame.cols - x);
  patch.colRange(0, inside).copyTo(frame({x, y, inside, patch.rows}));
  if (inside == patch.cols) return;
  patch.colRange(inside, patch.cols).copyTo(frame({0, y, patch.cols - inside, patch.rows}));
}

// Twenty patches of a hundredth of the frame each, two per row, rows moving alternately right and left. After
// one cycle of the ring each patch has reached the position of the next one. The patches' contents change
// with every frame, so that models cannot learn them.
Scene busy(cv::Size size) {
  constexpr int columns = 2;
  constexpr int rows = 10;
  const cv::Mat picture = texture(size, 1);
  const cv::Mat contents = texture(size, 2);
  const cv::Size patch(size.width / 9, size.height * 9 / 100);
  Random random(3);
  Scene scene;
  scene.opening = with_noise(picture, 100);
  for (int n = 0; n < kFrames; ++n) {
    cv::Mat frame = picture.clone();
    for (int i = 0; i < columns * rows; ++i) {
      const int row = i / columns;
      const int step = i % columns * kFrames + (row % 2 == 0 ? n : kFrames - n);
      const int x = step * size.width / (columns * kFrames) % size.width;
      const int y = (2 * row + 1) * size.height / (2 * rows) - patch.height / 2;
      const cv::Point from(random.below(size.width - patch.width), random.below(size.height - patch.height));
      paste_around(contents(cv::Rect(from, patch)), frame, x, y);
    }
    scene.ring.push_back(with_noise(frame, 101 + static_cast<std::uint64_t>(n)));
  }
  scene.partly_moving = true;
  return scene;
}

// The lighting of the whole picture changes on every fourth frame.
Scene lights(cv::Size size) {
  constexpr int apart = 4;
  constexpr std::array steps = {0, 40, -15, 25};
  const cv::Mat picture = texture(size, 1);
  Scene scene;
  scene.opening = with_noise(picture, 100);
  for (int n = 0; n < kFrames; ++n) {
    const int light = steps[static_cast<std::size_t>(n / apart) % steps.size()];
    scene.ring.push_back(with_noise(picture + cv::Scalar::all(light), 101 + static_cast<std::uint64_t>(n)));
  }
  scene.cycle = apart;
  return scene;
}

// Every byte of every frame differs by at least 64 from the previous frame.
Scene storm(cv::Size size) {
  constexpr int least = 64;
  Scene scene;
  scene.opening = texture(size, 1);
  cv::Mat last = scene.opening;
  for (int n = 0; n < kFrames; ++n) {
    Random random(201 + static_cast<std::uint64_t>(n));
    cv::Mat frame(size, CV_8UC3);
    const std::size_t bytes = frame.total() * frame.elemSize();
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
      if (i % 8 == 0) bits = random.next();
      frame.data[i] = static_cast<std::uint8_t>(last.data[i] + least + static_cast<int>(bits & 0x7F));
      bits >>= 8;
    }
    scene.ring.push_back(frame);
    last = frame;
  }
  return scene;
}

constexpr std::array<std::pair<const char*, Scene (*)(cv::Size)>, 5> kScenes = {
    {{"quiet", quiet}, {"street", make_street}, {"busy", busy}, {"lights", lights}, {"storm", storm}}};

}  // namespace

std::vector<std::string> scene_names() {
  std::vector<std::string> names;
  names.reserve(kScenes.size());
  for (const auto& [name, make] : kScenes) names.emplace_back(name);
  return names;
}

Scene make_scene(const std::string& name, cv::Size size) {
  for (const auto& [known, make] : kScenes) {
    if (name != known) continue;
    Scene scene = make(size);
    scene.name = name;
    return scene;
  }
  throw std::invalid_argument("no scene " + name);
}

}  // namespace lm::bench
