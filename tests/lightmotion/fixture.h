// Detectors by handle and their results, for tests.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "compact/planes.h"
#include "lightmotion/lightmotion.h"
#include "tests/compact/scenes.h"

namespace lm::test {

struct Destroyed {
  void operator()(lightmotion_detector* detector) const { lightmotion_destroy(detector); }
};
using Detector = std::unique_ptr<lightmotion_detector, Destroyed>;

// With the message of the last call that writes one.
struct Created {
  Detector detector;
  std::string message;
};
Created create(const std::string& document);

// Created without a message, or the test fails.
Detector made(const std::string& document);

// The document of a shape, with members after those of the size: "\"peel\": 1".
std::string documentOf(const compact::Shape& shape, const std::string& members = "");

// What a frame gave: "x y width height: regions; ..." and the JSON text.
std::string described(int count, const lightmotion_box* boxes);
std::string feed(const Detector& detector, const std::vector<std::uint8_t>& pixels, std::int64_t time,
                 std::size_t stride = 0);

std::vector<std::uint8_t> foregroundOf(const Detector& detector);
std::vector<std::uint8_t> backgroundOf(const Detector& detector);
lightmotion_info infoOf(const Detector& detector);

// Frames of a scene with 40 ms between them.
std::vector<std::vector<std::uint8_t>> framesOf(const Scene& scene, int count, std::uint32_t seed = 1);

// One value, and a rectangle of another.
struct Block {
  int left, top, width, height, value;
};
std::vector<std::uint8_t> picture(const compact::Shape& shape, int value, const std::vector<Block>& blocks);

}  // namespace lm::test
