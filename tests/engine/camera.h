// An engine that is fed frames of 4 x 3 pixels.
#pragma once

#include <string>

#include "tests/support/engine_fixture.h"

namespace lm::test {

// A frame of exactly the given size, all bytes the same.
inline Bytes plainFrame(int width, int height, int channels, std::uint8_t value) {
  return Bytes(static_cast<std::size_t>(width * height * channels), value);
}

// An engine for 4 x 3 frames, every pixel inside the region. Timestamps are 10 ms apart, a rate out of range,
// so lifeStaticFrm keeps its value.
struct Camera : kAMBLE {
  Camera() { put(roiMask, Bytes(12, 1)); }

  bool learn(const Bytes& frame, int channels) { return learn(frame, 4, 3, channels); }
  bool learn(const Bytes& frame, int width, int height, int channels) {
    curTimestamp = 1000 + 10 * time++;
    return learnBg_ncv(frame.data(), width, height, channels);
  }
  bool learnPlain(std::uint8_t value, int channels) {
    return learn(plainFrame(4, 3, channels, value), channels);
  }
  [[nodiscard]] std::string drawn(const std::uint8_t* plane) const { return drawing(plane, 12, 4); }

  int time = 0;
};

}  // namespace lm::test
