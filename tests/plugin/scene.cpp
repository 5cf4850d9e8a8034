#include "tests/plugin/scene.h"

#include <algorithm>

namespace lm::test {

std::string documentFor(const FrameSize& size, const std::string& more, const std::string& regions) {
  return R"({"frmW":")" + std::to_string(size.width) + R"(","frmH":")" + std::to_string(size.height) +
         R"(","frmChn":")" + std::to_string(size.channels) + R"(","roi":[)" + regions + "]" + more + "}";
}

Bytes frameWith(const FrameSize& size, const std::vector<Rect>& objects) {
  constexpr std::uint8_t dark = 50;
  constexpr std::uint8_t bright = 200;
  Bytes frame(static_cast<std::size_t>(size.width * size.height * size.channels), dark);
  for (const Rect& object : objects) {
    const int right = std::min(object.x + object.width, size.width);
    const int bottom = std::min(object.y + object.height, size.height);
    for (int y = object.y; y < bottom; ++y) {
      const auto row = frame.begin() + y * size.width * size.channels;
      std::fill(row + object.x * size.channels, row + right * size.channels, bright);
    }
  }
  return frame;
}

std::string resultOf(const std::string& boxes, const std::string& timestamp) {
  return R"({"object":[)" + boxes + R"(],"timestamp":")" + timestamp + "\"}\n";
}

}  // namespace lm::test
