#include <cstring>

#include "simd/cpu_level.h"
#include "tests/system/comparison.h"
#include "tests/system/orders.h"

namespace orders {

Shape anyShape(Dice& dice) {
  static constexpr std::array<Shape, 14> shapes = {{{60, 40},
                                                    {40, 60},
                                                    {48, 50},
                                                    {50, 48},
                                                    {100, 24},
                                                    {40, 20},
                                                    {20, 40},
                                                    {33, 31},
                                                    {31, 33},
                                                    {37, 5},
                                                    {5, 37},
                                                    {7, 9},
                                                    {16, 2},
                                                    {1, 1}}};
  return dice.oneOf(shapes);
}

namespace {

scene::Area area(Dice& dice) {
  return {dice.between(-5, 60), dice.between(-5, 50), dice.between(4, 40), dice.between(4, 40)};
}

scene::Scene anyScene(Dice& dice) {
  scene::Scene scene{.width = 1,
                     .height = 1,
                     .seed = static_cast<std::uint32_t>(dice.below(1000)),
                     .base = dice.between(20, 180),
                     .texture = dice.between(0, 20),
                     .noise = dice.between(0, 9)};
  for (int k = 0; k < 4; ++k) {
    const int from = dice.below(200);
    scene.lights.push_back(
        {area(dice), from, from + dice.between(1, 90), dice.between(-20, 20), dice.between(1, 5)});
  }
  for (int k = 0; k < 6; ++k) {
    const int from = dice.below(150);
    scene.things.push_back({.area = area(dice),
                            .from = from,
                            .until = from + dice.between(5, 90),
                            .shade = dice.between(0, 255),
                            .dx = dice.between(-2, 2),
                            .dy = dice.between(-2, 2),
                            .moves = dice.between(0, 20),
                            .flicker = dice.between(-35, 35)});
  }
  return scene;
}

}  // namespace

Pair::Pair(Dice& dice)
    : plain(GetCpuInstructionSet()), channels(dice.oneOf(std::array{1, 3, 4})), scene_(anyScene(dice)) {}

Bytes Pair::picture(Dice& dice, Shape shape, int channelCount) {
  scene_.width = shape.width;
  scene_.height = shape.height;
  scene_.channels = channelCount;
  if (!dice.chance(10)) ++frame_;
  if (dice.chance(2)) frame_ = 0;
  return scene_.draw(frame_);
}

std::string Pair::timestamp(Dice& dice) {
  time_ += dice.chance(90) ? dice.between(25, 300) : dice.between(-300, 3000);
  if (dice.chance(3)) return dice.oneOf(std::array{"-7", "0", " 12 ", "-1"});
  return std::to_string(time_);
}

std::vector<std::uint8_t*> Pair::masks() const {
  std::vector<std::uint8_t*> list;
  for (const auto* regions : {&real.engine->roiInclude, &real.engine->roiExclude}) {
    for (const polygon& region : *regions) list.push_back(region.mask);
  }
  return list;
}

void Pair::freeDroppedMasks(const std::vector<std::uint8_t*>& before) {
  const std::vector<std::uint8_t*> after = masks();
  for (std::uint8_t* mask : before) {
    if (std::find(after.begin(), after.end(), mask) == after.end()) delete[] mask;
  }
}

std::string Pair::difference() {
  if (hasEngine() != plain.engine.has_value()) return "engine made";
  for (const auto& [name, ours, theirs] : {std::tuple{"frmW", real.frmW, plain.frmW},
                                           {"frmH", real.frmH, plain.frmH},
                                           {"frmChn", real.frmChn, plain.frmChn}}) {
    if (ours != theirs) return std::string("detector's ") + name;
  }
  if (real.resText != plain.resText) return "resText: engine " + real.resText + ", model " + plain.resText;
  if ((real.fgMaskCopy != nullptr) == plain.fgMaskCopy.empty()) return "fgMaskCopy made";
  const std::string copy = unequalBytes(real.fgMaskCopy, plain.fgMaskCopy);
  if (!copy.empty()) return "fgMaskCopy" + copy;
  const std::string boxes = unequal(real.objList, plain.objList);
  if (!boxes.empty()) return "objList " + boxes;
  if (!hasEngine()) return "";
  model().boxes = plain.objList;
  return firstDifference(real, model());
}

std::string unequal(const std::vector<boxRect>& real, const std::vector<plain::Box>& plain) {
  if (real.size() != plain.size()) return unequal(real.size(), plain.size()) + " boxes";
  for (std::size_t i = 0; i < real.size(); ++i) {
    const std::array<float, 4> ours = {real[i].x, real[i].y, real[i].width, real[i].height};
    const std::array<float, 4> theirs = {plain[i].x, plain[i].y, plain[i].width, plain[i].height};
    if (std::memcmp(ours.data(), theirs.data(), sizeof ours) != 0) return "box " + std::to_string(i);
  }
  return "";
}

std::string unequal(const std::vector<bool>& real, const std::vector<bool>& plain) {
  return real == plain ? "" : "accepted entries differ";
}

std::string unequalBytes(const std::uint8_t* real, const Bytes& plain) {
  for (std::size_t i = 0; i < plain.size(); ++i) {
    if (real[i] != plain[i]) return " at byte " + std::to_string(i) + ": " + unequal(+real[i], +plain[i]);
  }
  return "";
}

}  // namespace orders
