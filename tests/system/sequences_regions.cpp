// Regions of every shape, and region masks made for another frame size.
#include "tests/system/sequence.h"

namespace {

using Regions = std::vector<plain::RegionText>;

plain::RegionText rectangle(const std::string& name, const std::string& x0, const std::string& y0,
                            const std::string& x1, const std::string& y1) {
  return {name, {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}};
}

const plain::RegionText concave = {
    "concave", {{"0.1", "0.1"}, {"0.9", "0.1"}, {"0.5", "0.5"}, {"0.9", "0.9"}, {"0.1", "0.9"}}};
const plain::RegionText star = {"star",
                                {{"0.5", "0"}, {"0.8", "1"}, {"0", "0.35"}, {"1", "0.35"}, {"0.2", "1"}}};
const plain::RegionText partlyOutside = {"outside", {{"-0.5", "0.3"}, {"0.6", "-0.7"}, {"1.4", "1.2"}}};
const plain::RegionText twoPoints = {"line", {{"0.1", "0.1"}, {"0.9", "0.9"}}};
const plain::RegionText onePoint = {"point", {{"0.5", "0.5"}}};

// Large objects cross the frame, so that some survive the erosion at every edge.
scene::Scene crossing(int w, int h) {
  return {.width = w,
          .height = h,
          .seed = 3,
          .noise = 4,
          .lights = {{{0, 0, w, h}, 30, 45, 10}},
          .things = {{.area = {-w / 2, 0, w / 2, h}, .from = 2, .until = 30, .dx = 2},
                     {.area = {w / 4, h, w / 2, h}, .from = 20, .shade = 140, .dy = -1, .moves = h}}};
}

Sequence over(const std::string& name, int w, int h, Regions include, Regions exclude) {
  return {.name = "region_" + name,
          .width = w,
          .height = h,
          .frames = 60,
          .frame = framesOf(crossing(w, h), 100),
          .include = std::move(include),
          .exclude = std::move(exclude),
          .configuredBy = ConfiguredBy::document};
}

// The mask is made for `w` x `h` pixels; the frames have 20 x 18.
Sequence maskFor(int w, int h) {
  Sequence sequence = over("mask_" + std::to_string(w) + "x" + std::to_string(h), 20, 18, wholeFrame(), {});
  sequence.entries = {"frmW " + std::to_string(w), "frmH " + std::to_string(h)};
  sequence.configuredBy = ConfiguredBy::parameters;
  return sequence;
}

}  // namespace

std::vector<Sequence> regionSequences() {
  std::vector<Sequence> list = {
      over("concave", 33, 31, {concave}, {}), over("star", 40, 40, {star}, {}),
      over("partly_outside", 33, 31, {partlyOutside}, {}),
      over("several", 33, 31,
           {rectangle("a", "0", "0", "0.5", "0.6"), rectangle("b", "0.3", "0.4", "1", "1")},
           {rectangle("c", "0.4", "0.4", "0.6", "0.6"), twoPoints, onePoint}),
      over("excluded_concave", 33, 31, wholeFrame(), {concave, star}),
      over("without_points", 20, 16, {twoPoints}, {}),
      over("all_excluded", 20, 16, wholeFrame(), wholeFrame()),
      // The frame's last pixels are inside, its first ones outside: pruning reads the first.
      over("lower_part", 33, 31, {rectangle("low", "-1", "0.3", "2", "2")}, {}),
      over("lower_part_short_tail", 35, 31, {rectangle("low", "-1", "0.3", "2", "2")}, {}),
      over("right_part", 33, 31, {rectangle("right", "0.4", "-1", "2", "2")}, {}),
      over("right_part_single_tail", 43, 3, {rectangle("right", "0.2", "-1", "2", "2")}, {}),
      over("no_tail", 32, 32, {rectangle("low", "-1", "0.3", "2", "2")}, {}),
      over("frame_below_a_block", 5, 3, {rectangle("low", "-1", "0.4", "2", "2")}, {})};
  append(list, {maskFor(10, 18), maskFor(4, 2), maskFor(30, 30)});
  return list;
}
