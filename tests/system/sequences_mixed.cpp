// Random scenes, sizes, settings and regions, for unforeseen combinations.
#include <algorithm>
#include <array>

#include "tests/system/sequence.h"

namespace {

// Numbers that depend on the seed and on the number of previous calls.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : seed_(seed) {}
  int below(int limit) { return scene::scattered(seed_, ++rolls_, 0, 0, limit); }
  int between(int low, int high) { return low + below(high - low + 1); }
  bool chance(int percent) { return below(100) < percent; }

 private:
  std::uint32_t seed_;
  int rolls_ = 0;
};

scene::Area area(Dice& dice, int w, int h) {
  return {dice.between(-5, w), dice.between(-5, h), dice.between(1, std::max(9, w / 2)),
          dice.between(1, std::max(9, h / 2))};
}

scene::Scene picture(Dice& dice, std::uint32_t seed) {
  const int w = dice.between(1, 70), h = dice.between(1, 60);
  scene::Scene scene{.width = w,
                     .height = h,
                     .channels = std::array{1, 3, 4}[static_cast<std::size_t>(dice.below(3))],
                     .seed = seed,
                     .base = dice.between(20, 200),
                     .texture = dice.between(0, 25),
                     .noise = dice.between(0, 12),
                     .lights = {},
                     .things = {}};
  for (int k = dice.below(6); k > 0; --k) {
    const int from = dice.below(40);
    scene.lights.push_back(
        {area(dice, w, h), from, from + dice.between(1, 50), dice.between(-20, 20), dice.between(1, 5)});
  }
  for (int k = dice.below(9); k > 0; --k) {
    const int from = dice.below(40);
    scene.things.push_back({.area = area(dice, w, h),
                            .from = from,
                            .until = from + dice.between(1, 50),
                            .shade = dice.between(0, 255),
                            .dx = dice.between(-2, 2),
                            .dy = dice.between(-2, 2),
                            .moves = dice.between(0, 20),
                            .flicker = dice.between(-35, 35)});
  }
  return scene;
}

std::vector<std::string> settings(Dice& dice) {
  std::vector<std::string> entries;
  const auto sometimes = [&](const std::string& key, int percent, int low, int high) {
    if (dice.chance(percent)) entries.push_back(key + std::to_string(dice.between(low, high)));
  };
  sometimes("sensitivity ", 40, -1, 6);
  sometimes("lcAdap ", 40, 0, 6);
  sometimes("lifeStatic ", 40, -1, 1);
  sometimes("MIN_MATCH_NUM ", 40, 1, 6);
  sometimes("MIN_MATCH_DIST ", 40, 1, 30);
  sometimes("THR_DIFF_HEURISTIC ", 40, 0, 20);
  sometimes("NUM_SEGMENT_LOCK ", 40, 1, 20);
  sometimes("NUM_PERIOD_LOCK ", 40, 1, 9);
  sometimes("GHOST_SUPPRESSION ", 10, 0, 0);
  sometimes("ILLUMINATION_CHANGE ", 10, 0, 0);
  sometimes("minBoxW 0.", 50, 1, 6);
  sometimes("minBoxH 0.", 50, 1, 6);
  return entries;
}

plain::RegionText region(Dice& dice) {
  const auto share = [&] { return std::to_string(dice.between(-4, 14)) + "e-1"; };
  plain::RegionText text{"region", {}};
  for (int k = dice.between(3, 7); k > 0; --k) {
    const std::string x = share(), y = share();
    text.points.emplace_back(x, y);
  }
  return text;
}

Sequence mixed(std::uint32_t seed) {
  Dice dice(seed);
  const scene::Scene scene = picture(dice, seed);
  Sequence sequence{.name = "mixed_" + std::to_string(seed),
                    .width = scene.width,
                    .height = scene.height,
                    .frames = 70,
                    .frame = framesOf(scene, dice.between(20, 350)),
                    .entries = settings(dice)};
  if (dice.chance(40)) sequence.include = {region(dice), region(dice)};
  if (dice.chance(30)) sequence.exclude = {region(dice)};
  return sequence;
}

}  // namespace

std::vector<Sequence> mixedSequences() {
  std::vector<Sequence> list;
  for (std::uint32_t seed = 1; seed <= 60; ++seed) list.push_back(mixed(seed));
  return list;
}
