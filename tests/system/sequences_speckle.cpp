// Automatic sensitivity: pieces too small for an object, in frames of 160 x 64 pixels. A blob of 7 x 7 erodes
// to one pixel.
#include "tests/system/sequence.h"

namespace {

constexpr int width = 160, height = 64;
using Shot = std::vector<scene::Area>;  // objects of one frame

Shot blobs(const std::vector<plain::Vertex>& corners, int side = 7) {
  Shot shot;
  for (const plain::Vertex& corner : corners) shot.push_back({corner.x, corner.y, side, side});
  return shot;
}

const Shot nothing = {};
const Shot together = blobs({{10, 10}, {20, 10}, {10, 20}});
const Shot alone = blobs({{60, 30}});
const Shot wide = blobs({{5, 5}, {140, 40}});
// The middle is 40.5 pixels from both, truncated to a quarter of 160.
const Shot wideAtBound = blobs({{10, 10}, {91, 10}});
const Shot object = {{60, 20, 20, 20}};
const Shot objectAndPieces = {{60, 20, 20, 20}, {10, 10, 7, 7}, {20, 10, 7, 7}};

// A column of blobs and one far off to the side.
Shot columnAnd(int count, int spacing, plain::Vertex far) {
  std::vector<plain::Vertex> corners = {far};
  for (int k = 0; k < count; ++k) corners.push_back({20, 2 + k * spacing});
  return blobs(corners);
}

// The first shots need earlier frames to compare with.
Sequence shown(const std::string& name, std::vector<Shot> shots) {
  shots.insert(shots.begin(), 2, nothing);
  const auto frame = [shots](int k) {
    scene::Scene scene{.width = width, .height = height, .texture = 2, .things = {}};
    for (const scene::Area& area : shots[static_cast<std::size_t>(k)]) scene.things.push_back({.area = area});
    return Frame{scene.draw(k), scene.channels, std::to_string(1000 + 100 * k)};
  };
  return {.name = "speckle_" + name,
          .width = width,
          .height = height,
          .frames = static_cast<int>(shots.size()),
          .frame = frame,
          .entries = {"sensitivity -1"},
          .configuredBy = ConfiguredBy::document};
}

Sequence starting(Sequence sequence, std::int32_t threshold, std::int32_t working, std::int32_t hold) {
  sequence.before = [threshold, working, hold](int k, kAMBLE* engine, plain::Model& model) {
    if (k != 0) return;
    toBoth(engine, model, [&](auto& state) {
      state.thrCcPxl = threshold;
      state.thrCcPxl2 = working;
      state.holdCcPxl = hold;
    });
  };
  return sequence;
}

}  // namespace

std::vector<Sequence> speckleSequences() {
  // Distances in whole pixels: 30 from the middle and 39 from the farthest piece, more than three quarters;
  // then 30 and 40, exactly three quarters.
  const Shot outlier = columnAnd(4, 8, {58, 14});
  const Shot outlierAtBound = columnAnd(3, 8, {60, 10});
  return {
      shown("lowered_and_restored",
            {together, nothing, nothing, nothing, nothing, nothing, nothing, nothing, together}),
      shown("lowered_twice_then_found",
            {together, together, together, together, nothing, alone, nothing, nothing, nothing, nothing,
             nothing, nothing, nothing, nothing, alone}),
      shown("scattered_while_held", {together, wide, outlier, wide, outlier, nothing, nothing}),
      shown("scattered", {wide, outlier, wideAtBound, outlierAtBound, outlierAtBound}),
      shown("beside_objects", {object, objectAndPieces, together, objectAndPieces, object, object}),
      shown("larger_pieces", {blobs({{10, 10}, {20, 10}}, 8), blobs({{10, 10}, {20, 10}}, 9),
                              blobs({{10, 10}, {22, 10}}, 10), blobs({{10, 10}, {22, 10}}, 11)}),
      starting(shown("from_three_pixels", {together, nothing, nothing, nothing, nothing, nothing}), 3, 3, 0),
      starting(shown("held_at_rest", {nothing, alone, object, nothing}), 25, 25, 2),
      // Twice the working threshold overflows an int.
      starting(shown("wrapping_double", {object, nothing, object}), 0x70000000, 0x60000000, 0)};
}
