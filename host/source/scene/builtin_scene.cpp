#include "host/source/scene/builtin_scene.h"

#include <algorithm>

#include "host/base/interrupt.h"
#include "host/source/scene/scene_actors.h"
#include "host/source/scene/scene_street.h"

namespace lm::host::source::scene {
namespace {

constexpr int kFrames = 500;
constexpr int kFramesPerSecond = 25;
constexpr int kLampOn = 300;
constexpr std::size_t kNoiseLength = 1 << 16;

// From back to front: these, the lamp, the walker at the kerb, the car, the walker on the road.
constexpr Walker kBehindLamp[] = {
    {150, 680, -40, 209, 88, 34, {176, 186, 120}, {52, 40, 36}, {40, 58, 88}},
    {50, -40, 680, 220, 93, 43, {128, 84, 44}, {58, 52, 48}, {24, 26, 30}},
    {92, 680, -40, 231, 98, 50, {66, 118, 66}, {64, 38, 26}, {70, 120, 164}},
};
constexpr Walker kAtKerb = {335, 680, -40, 260, 101, 76, {52, 152, 214}, {44, 42, 42}, {26, 34, 52}};
constexpr Walker kOnRoad = {245, -50, 690, 356, 124, 62, {62, 48, 172}, {150, 172, 186}, {30, 44, 70}};

std::chrono::microseconds time_of(int number) {
  return std::chrono::milliseconds(1000 / kFramesPerSecond * number);
}

// Approximately normal, from -6 to 6, with a standard deviation near 2.4: a small camera in the evening.
std::vector<std::int8_t> make_noise() {
  std::vector<std::int8_t> noise(kNoiseLength);
  for (std::size_t i = 0; i < noise.size(); ++i) {
    const std::uint32_t random = scrambled(static_cast<std::uint32_t>(i) + 77);
    noise[i] = static_cast<std::int8_t>(static_cast<int>(random % 5 + random / 5 % 5 + random / 25 % 5) - 6);
  }
  return noise;
}

}  // namespace

BuiltinScene::BuiltinScene(double fps)
    : fps_(fps), street_(paint_street()), light_(lamp_light()), noise_(make_noise()), picker_(fps) {
  info_.name = "built-in scene";
  info_.size = {kWidth, kHeight};
  info_.rate = kFramesPerSecond;
  info_.duration = std::chrono::seconds(kFrames / kFramesPerSecond);
}

bool BuiltinScene::next(Frame& frame) {
  while (number_ < kFrames && !picker_.wants(time_of(number_))) ++number_;
  if (number_ == kFrames || base::interrupted() != 0) return false;
  frame.image = street_.clone();
  Canvas canvas(frame.image);
  for (const Walker& walker : kBehindLamp) draw(canvas, walker, number_);
  draw_lamp(canvas);
  draw(canvas, kAtKerb, number_);
  draw_car(canvas, number_);
  draw(canvas, kOnRoad, number_);
  if (number_ >= kLampOn) shine(frame.image, light_);
  add_noise(frame.image);
  frame.time = time_of(number_);
  frame.number = number_;
  ++number_;
  return true;
}

bool BuiltinScene::seek(std::chrono::microseconds time) {
  picker_ = live::FramePicker(fps_);
  number_ = 0;
  while (number_ < kFrames && time_of(number_) < time) ++number_;
  return true;
}

// Each row takes its noise from a different offset of the table, which is much cheaper than drawing every
// value.
void BuiltinScene::add_noise(cv::Mat& image) const {
  const std::size_t length = image.step[0];
  for (int y = 0; y < image.rows; ++y) {
    const auto row = static_cast<std::uint32_t>(number_ * image.rows + y);
    const std::int8_t* noise = noise_.data() + scrambled(row) % (kNoiseLength - length);
    auto* pixels = image.ptr<std::uint8_t>(y);
    for (std::size_t i = 0; i < length; ++i) {
      pixels[i] = static_cast<std::uint8_t>(std::clamp(pixels[i] + noise[i], 0, 255));
    }
  }
}

}  // namespace lm::host::source::scene
