// Components, boxes, joining and the size filter at their limits. A rectangle of w x h loses three pixels on
// each side that borders background; its box then has a margin of one pixel.
#include "tests/system/sequence.h"

namespace {

using scene::Area;

Sequence standing(const std::string& name, int w, int h, const std::vector<Area>& areas,
                  std::vector<std::string> entries = {}) {
  scene::Scene scene{.width = w, .height = h, .channels = 1, .texture = 2, .things = {}};
  for (const Area& area : areas) scene.things.push_back({.area = area, .from = 2, .until = 6});
  return {.name = "objects_" + name,
          .width = w,
          .height = h,
          .frames = 8,
          .frame = framesOf(scene),
          .entries = std::move(entries),
          .configuredBy = ConfiguredBy::document};
}

const std::vector<Area> aroundTwo = {
    {4, 4, 80, 10}, {4, 4, 10, 70}, {74, 4, 10, 70}, {24, 24, 14, 14}, {45, 40, 16, 16}};

// Rectangles that appear and disappear at random, to reach all kinds of joins.
Sequence crowd(int w, int h, int things, std::uint32_t seed) {
  scene::Scene scene{.width = w, .height = h, .channels = 1, .seed = seed, .texture = 2, .things = {}};
  for (int k = 0; k < things; ++k) {
    const auto random = [&](int what, int below) { return scene::scattered(seed, k, what, 0, below); };
    const int from = 2 + random(0, 30);
    scene.things.push_back(
        {.area = {random(1, w) - 8, random(2, h) - 8, 8 + random(3, 18), 8 + random(4, 18)},
         .from = from,
         .until = from + 3 + random(5, 10),
         .shade = 150 + random(6, 90),
         .dx = random(7, 5) - 2,
         .dy = random(8, 5) - 2});
  }
  return {.name = "objects_crowd_" + std::to_string(w) + "x" + std::to_string(h) + "_" + std::to_string(seed),
          .width = w,
          .height = h,
          .frames = 45,
          .frame = framesOf(scene),
          .entries = {"minBoxW 0.15", "minBoxH 0.25"},
          .configuredBy = ConfiguredBy::document};
}

}  // namespace

std::vector<Sequence> objectSequences() {
  std::vector<Sequence> list = {
      standing("none", 40, 30, {}),
      // 11 x 11 leaves 5 x 5 = 25 pixels, the threshold; 11 x 10 leaves 20.
      standing("at_pixel_count", 64, 40, {{10, 10, 11, 11}}),
      standing("below_pixel_count", 64, 40, {{10, 10, 11, 10}}),
      standing("at_every_border", 64, 48,
               {{0, 15, 14, 14}, {50, 15, 14, 14}, {25, 0, 14, 14}, {25, 34, 14, 14}}),
      standing("whole_frame", 40, 30, {{0, 0, 40, 30}}),
      standing("diagonal", 160, 120,
               {{10, 10, 14, 14}, {25, 25, 14, 14}, {60, 60, 14, 14}, {95, 60, 14, 14}}),
      // In frames of width 160, gaps of up to 5 are joined: objects one pixel apart leave 7 empty columns,
      // minus the two margins.
      standing("gap_at_bound", 160, 60, {{10, 10, 14, 14}, {25, 10, 14, 14}}),
      standing("gap_over_bound", 160, 60, {{10, 10, 14, 14}, {26, 10, 14, 14}}),
      // Gaps of 5 and 1 to the sides: 5.1 pixels apart, which count as 5.
      standing("gap_fraction_over_bound", 160, 60, {{10, 10, 14, 14}, {25, 21, 14, 14}}),
      standing("chain", 160, 60, {{10, 10, 14, 14}, {25, 10, 14, 14}, {40, 10, 14, 14}, {55, 10, 14, 14}}),
      // Three sides of a rectangle around two others: boxes that are nested and far from each other's edges.
      // They are joined, unless the size filter drops the inner ones first.
      standing("nested", 96, 80, aroundTwo),
      standing("nested_small", 96, 80, aroundTwo, {"minBoxW 0.25", "minBoxH 0.25"}),
      // Boxes [0, 6] and [5, 35] overlap in exactly one column; in such a small frame the gap pass does not
      // join them.
      standing("overlap_by_one", 30, 30, {{0, 0, 8, 10}, {15, 0, 15, 30}, {3, 17, 27, 13}}),
      // An object of w x h has a box of (w - 4) x (h - 4). The minima here are 16 x 24, 32 x 12 and 16 x 12.
      standing("width_at_minimum", 64, 48, {{8, 8, 20, 16}}, {"minBoxW 0.25", "minBoxH 0.5"}),
      standing("height_at_minimum", 64, 48, {{8, 8, 16, 16}}, {"minBoxW 0.5", "minBoxH 0.25"}),
      standing("below_both_minima", 64, 48, {{8, 8, 19, 15}, {40, 20, 22, 15}, {10, 28, 15, 18}},
               {"minBoxW 0.25", "minBoxH 0.25"})};
  for (std::uint32_t seed = 1; seed <= 6; ++seed) {
    append(list, {crowd(96, 80, 24, seed), crowd(31, 29, 12, seed), crowd(130, 40, 24, seed)});
  }
  return list;
}
