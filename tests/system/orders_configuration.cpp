// setParam and the parameter file.
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "tests/system/orders.h"
#include "tests/system/orders_regions.h"

namespace orders {
namespace {

bool withEngine(const Pair& pair) { return pair.hasEngine(); }
// Most engines are configured before their first frame.
bool unsized(const Pair& pair) { return pair.hasEngine() && !pair.hasTables(); }

std::string anyEntry(Dice& dice) {
  struct Key {
    const char* name;
    int low, high;
  };
  static constexpr std::array<Key, 17> keys = {{{"frmChn", 1, 5},
                                                {"sensitivity", -1, 6},
                                                {"lcAdap", 0, 6},
                                                {"lifeStatic", -2, 2},
                                                {"sensitivity_auto", 0, 1},
                                                {"GHOST_SUPPRESSION", 0, 1},
                                                {"ILLUMINATION_CHANGE", 0, 1},
                                                {"MIN_MATCH_NUM", 0, 21},
                                                {"MIN_MATCH_NUM", 1, 4},
                                                {"MIN_MATCH_DIST", 0, 30},
                                                {"THR_DIFF_HEURISTIC", -1, 25},
                                                {"NUM_SEGMENT_LOCK", 0, 21},
                                                {"NUM_PERIOD_LOCK", 1, 9},
                                                {"minBoxW 0.", 0, 4},
                                                {"minBoxH 0.", 0, 4},
                                                {"minBoxW", 0, 1},
                                                {"frmw", 1, 9}}};
  const Key& key = dice.oneOf(keys);
  const std::string name = key.name;
  const std::string value = std::to_string(dice.between(key.low, key.high));
  return name + (name.back() == '.' ? "" : dice.chance(20) ? "\t " : " ") + value;
}

std::vector<std::string> anyEntries(Pair& pair, Dice& dice) {
  std::vector<std::string> entries;
  if (dice.chance(70)) {
    const Shape shape = pair.hasTables() && dice.chance(60) ? pair.sized() : anyShape(dice);
    entries.push_back("frmW " + std::to_string(shape.width));
    if (dice.chance(95)) entries.push_back("frmH " + std::to_string(shape.height));
  }
  for (int k = dice.below(5); k > 0; --k) entries.push_back(anyEntry(dice));
  if (!entries.empty() && dice.chance(5)) entries.push_back("");  // repeats the previous entry
  if (dice.chance(3)) entries.push_back("frmW broad");
  return entries;
}

std::string setParam(Pair& pair, Dice& dice, std::string& call) {
  std::vector<std::string> entries = anyEntries(pair, dice);
  call = "setParam({";
  for (const std::string& entry : entries) call += '"' + entry + "\", ";
  // The engine's own lists have masks already.
  const bool own = dice.chance(15);
  const std::vector<plain::RegionText> texts[] = {anyRegions(dice, 80), anyRegions(dice, 20)};
  call += own ? "}, its own regions)" : "}, " + written(texts[0]) + ", " + written(texts[1]) + ")";
  const Shape scale = pair.hasTables() ? pair.sized() : Shape{40, 40};
  const auto regions = [&](int list) {
    return pair.model().regionsInPixels(texts[list], scale.width, scale.height, 0);
  };
  const std::vector<plain::Region> include = regions(0), exclude = regions(1);
  std::vector<polygon> ours = polygonsOf(include), oursOut = polygonsOf(exclude);

  kAMBLE& engine = pair.engine();
  plain::Model& model = pair.model();
  const std::vector<std::uint8_t*> before = pair.masks();
  const std::string difference = callBoth(
      0,
      [&] {
        return engine.setParam(entries, own ? engine.roiInclude : ours, own ? engine.roiExclude : oursOut);
      },
      [&] {
        return model.setParam(entries, own ? model.roiInclude : include, own ? model.roiExclude : exclude);
      });
  pair.freeDroppedMasks(before);
  return difference;
}

std::string parameterFile(Pair& pair, Dice& dice, std::string& call) {
  std::vector<std::string> lines;
  for (int k = dice.between(1, 3); k > 0; --k) {
    const char* key = dice.oneOf(std::array{"thrMatch", "thrHeuris", "thrIllum", "minObjW", "minObjH",
                                            "thrCcPxl", "thrConnect", "numNbr"});
    const bool share = std::string(key).rfind("minObj", 0) == 0;
    lines.push_back(std::string(key) + ' ' + (share ? "0." : "") + std::to_string(dice.between(0, 30)));
  }
  call = "ParserParams({";
  for (const std::string& line : lines) call += '"' + line + "\", ";
  call += "})";
  const std::string path = "/tmp/lightmotion_orders_" + std::to_string(getpid());
  std::ofstream file(path);
  for (const std::string& line : lines) file << line << '\n';
  file.close();
  pair.engine().ParserParams(path.c_str());
  std::remove(path.c_str());
  for (const std::string& line : lines) pair.model().parameterLine(line);
  return "";
}

}  // namespace

std::vector<plain::RegionText> anyRegions(Dice& dice, int percent) {
  std::vector<plain::RegionText> regions;
  if (percent > 50 && dice.chance(50)) return {{"all", {{"-1", "-1"}, {"2", "-1"}, {"2", "2"}, {"-1", "2"}}}};
  while (dice.chance(percent) && regions.size() < 3) {
    plain::RegionText region{"region " + std::to_string(regions.size()), {}};
    for (int k = dice.between(3, 6); k > 0; --k) {
      const std::string x = std::to_string(dice.between(-4, 14)) + "e-1";
      const std::string y = std::to_string(dice.between(-4, 14)) + "e-1";
      region.points.emplace_back(x, y);
    }
    regions.push_back(region);
  }
  return regions;
}

std::string written(const std::vector<plain::RegionText>& regions) {
  std::string text = "[";
  for (const plain::RegionText& region : regions) {
    text += region.name + ":";
    for (const auto& [x, y] : region.points) text += " (" + x + ", " + y + ")";
    text += "; ";
  }
  return text + "]";
}

std::vector<polygon> polygonsOf(const std::vector<plain::Region>& regions) {
  std::vector<polygon> polygons;
  for (const plain::Region& region : regions) {
    polygon copy;
    copy.name = region.name;
    for (const plain::Vertex& vertex : region.points) copy.points.push_back({vertex.x, vertex.y});
    polygons.push_back(copy);
  }
  return polygons;
}

std::vector<Operation> configurationOperations() {
  return {
      {"setParam", 25, withEngine, setParam},
      {"setParam", 800, unsized, setParam},
      {"ParserParams", 5, withEngine, parameterFile},
  };
}

}  // namespace orders
