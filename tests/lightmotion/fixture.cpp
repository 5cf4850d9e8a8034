#include "tests/lightmotion/fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace lm::test {

Created create(const std::string& document) {
  std::array<char, 1000> message{};
  Detector detector(lightmotion_create(document.c_str(), message.data(), message.size()));
  return {std::move(detector), message.data()};
}

Detector made(const std::string& document) {
  Created created = create(document);
  EXPECT_NE(created.detector, nullptr) << document;
  EXPECT_EQ(created.message, "") << document;
  return std::move(created.detector);
}

std::string documentOf(const compact::Shape& shape, const std::string& members) {
  return "{\"frmW\": " + std::to_string(shape.width) + ", \"frmH\": " + std::to_string(shape.height) +
         ", \"frmChn\": " + std::to_string(shape.channels) + (members.empty() ? "" : ", ") + members + "}";
}

std::string described(int count, const lightmotion_box* boxes) {
  if (count < 0) return lightmotion_error_text(count);
  std::string text;
  for (int i = 0; i < count; ++i) {
    const lightmotion_box& box = boxes[i];
    for (const int number : {box.x, box.y, box.width, box.height}) text += std::to_string(number) + ' ';
    text += "in";
    for (int k = 0; k < box.region_count; ++k) text += ' ' + std::to_string(box.regions[k]);
    text += "; ";
  }
  return text;
}

std::string feed(const Detector& detector, const std::vector<std::uint8_t>& pixels, std::int64_t time,
                 std::size_t stride) {
  const lightmotion_box* boxes = nullptr;
  const int count = lightmotion_process(detector.get(), pixels.data(), stride, time, &boxes);
  return described(count, boxes) + lightmotion_json(detector.get(), nullptr);
}

lightmotion_info infoOf(const Detector& detector) {
  lightmotion_info info{};
  info.struct_size = sizeof info;
  EXPECT_EQ(lightmotion_get_info(detector.get(), &info), LIGHTMOTION_OK);
  return info;
}

std::vector<std::uint8_t> foregroundOf(const Detector& detector) {
  const lightmotion_info info = infoOf(detector);
  std::vector<std::uint8_t> mask(static_cast<std::size_t>(info.width * info.height), 7);
  EXPECT_EQ(lightmotion_foreground(detector.get(), mask.data(), 0), LIGHTMOTION_OK);
  return mask;
}

std::vector<std::uint8_t> backgroundOf(const Detector& detector) {
  const lightmotion_info info = infoOf(detector);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(info.width * info.height * info.bytes_per_pixel),
                                   7);
  EXPECT_EQ(lightmotion_background(detector.get(), pixels.data(), 0), LIGHTMOTION_OK);
  return pixels;
}

std::vector<std::vector<std::uint8_t>> framesOf(const Scene& scene, int count, std::uint32_t seed) {
  Dice dice(seed);
  std::vector<std::vector<std::uint8_t>> frames;
  for (int i = 0; i < count; ++i) frames.push_back(draw(scene, i, dice));
  return frames;
}

std::vector<std::uint8_t> picture(const compact::Shape& shape, int value, const std::vector<Block>& blocks) {
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(shape.height) * shape.rowBytes(),
                                   static_cast<std::uint8_t>(value));
  for (const Block& block : blocks) {
    for (int y = std::max(0, block.top); y < std::min(shape.height, block.top + block.height); ++y) {
      const int left = std::max(0, block.left);
      const int right = std::min(shape.width, block.left + block.width);
      std::fill(pixels.begin() + (y * shape.width + left) * shape.channels,
                pixels.begin() + (y * shape.width + right) * shape.channels,
                static_cast<std::uint8_t>(block.value));
    }
  }
  return pixels;
}

}  // namespace lm::test
