// The detector's own calls.
#include "tests/system/orders.h"
#include "tests/system/orders_regions.h"

namespace orders {
namespace {

bool always(const Pair& /*pair*/) { return true; }

plain::Document anyDocument(const Pair& pair, Dice& dice) {
  plain::Document document;
  const Shape shape = pair.hasEngine() && pair.hasTables() && dice.chance(50) ? pair.sized() : anyShape(dice);
  const int channels = dice.chance(90) ? pair.channels : dice.oneOf(std::array{0, 1, 2, 3, 4, 5});
  const auto add = [&](const char* key, int value) {
    document.entries.push_back(std::string(key) + ' ' + std::to_string(value));
  };
  if (dice.chance(95)) add("frmW", shape.width);
  if (dice.chance(95)) add("frmH", shape.height);
  if (dice.chance(95)) add("frmChn", channels);
  if (dice.chance(30)) add("sensitivity", dice.between(-1, 5));
  if (dice.chance(30)) add("lcAdap", dice.between(1, 5));
  if (dice.chance(20)) add("lifeStatic", dice.between(-1, 1));
  document.include = anyRegions(dice, 90);
  document.exclude = anyRegions(dice, 20);
  return document;
}

std::string textOf(const plain::Document& document) {
  std::string text = "{";
  for (const std::string& entry : document.entries) {
    const std::size_t blank = entry.find(' ');
    text.append("\"").append(entry, 0, blank).append("\":\"").append(entry, blank + 1).append("\",");
  }
  const auto list = [&](const char* key, const std::vector<plain::RegionText>& regions) {
    text.append("\"").append(key).append("\":[");
    for (const plain::RegionText& region : regions) {
      text +=
          (&region == regions.data() ? "{\"name\":\"" : ",{\"name\":\"") + region.name + "\",\"points\":[";
      for (const auto& point : region.points) {
        const char* comma = &point == region.points.data() ? "" : ",";
        text.append(comma)
            .append("{\"x\":\"")
            .append(point.first)
            .append("\",\"y\":\"")
            .append(point.second)
            .append("\"}");
      }
      text += "]}";
    }
    text += ']';
  };
  list("roi", document.include);
  text += ',';
  list("ror", document.exclude);
  return text + '}';
}

std::string init(Pair& pair, Dice& dice, std::string& call) {
  const plain::Document document = anyDocument(pair, dice);
  const std::string text = textOf(document);
  call = "init(" + text + ")";
  const std::vector<std::uint8_t*> before = pair.hasEngine() ? pair.masks() : std::vector<std::uint8_t*>{};
  const std::string difference = callBoth(
      0, [&] { return pair.real.init(text.c_str()); }, [&] { return pair.plain.init(document); });
  pair.freeDroppedMasks(before);
  return difference;
}

// After the host has sized the engine for frames of another size, the mask copy must be made again.
void fitMaskCopy(Pair& pair) {
  const std::size_t pixels = static_cast<std::size_t>(pair.plain.frmW * pair.plain.frmH);
  const bool used = pair.pixels() == pixels || pair.model().frmCount == 0;
  if (!used || pair.plain.fgMaskCopy.size() == pixels) return;
  std::free(pair.real.fgMaskCopy);
  pair.real.fgMaskCopy = nullptr;
  pair.plain.fgMaskCopy.clear();
}

bool canProcessFrame(const Pair& pair) {
  const Shape shape{pair.plain.frmW, pair.plain.frmH};
  if (shape.width < 1 || shape.height < 1 || pair.plain.frmChn < 1) return false;
  return !pair.hasEngine() || !pair.hasTables() || pair.model().frmCount != 0 || shape == pair.sized();
}

std::string processFrame(Pair& pair, Dice& dice, std::string& call) {
  const Shape shape{pair.plain.frmW, pair.plain.frmH};
  const Bytes frame = pair.picture(dice, shape, pair.plain.frmChn);
  const std::string time = pair.timestamp(dice);
  call = "frameProc(frame, \"" + time + "\")";
  if (pair.hasEngine()) fitMaskCopy(pair);
  const bool sizes = pair.hasEngine() && pair.model().frmCount == 0;
  const std::string difference = callBoth(
      dice.below(1000),
      [&] {
        int length = -1;
        pair.real.frameProc(frame.data(), time.c_str(), &length);
        return length;
      },
      [&] { return pair.plain.frameProc(frame.data(), time); });
  if (sizes && pair.hasTables()) pair.tables = shape;
  return difference;
}

std::string result(Pair& pair, Dice& dice, std::string& call) {
  const bool regenerate = dice.chance(50);
  call = regenerate ? "genRes(\"5\")" : "getRes()";
  if (regenerate)
    return callBoth(
        0, [&] { return pair.real.genRes("5"); }, [&] { return pair.plain.genRes("5"); });
  std::string text(pair.plain.resText.size() + 1, '?');
  pair.real.getRes(text.data());
  text.resize(text.find('\0'));
  return unequal(text, pair.plain.resText);
}

std::string end(Pair& pair, Dice& /*dice*/, std::string& /*call*/) {
  pair.real.terminate();
  pair.plain.terminate();
  return "";
}

std::string readScalars(Pair& pair, Dice& dice, std::string& call) {
  const plain::Document document = anyDocument(pair, dice);
  const std::string text = textOf(document);
  call = "myjsonReader(" + text + ")";
  const auto joined = [](const std::vector<std::string>& entries) {
    std::string all;
    for (const std::string& entry : entries) all += entry + '\n';
    return all;
  };
  return callBoth(
      0, [&] { return joined(pair.real.myjsonReader(text)); },
      [&] { return joined(pair.plain.readScalars(document)); });
}

std::string readRegions(Pair& pair, Dice& dice, std::string& call) {
  const plain::Document document = anyDocument(pair, dice);
  const std::string text = textOf(document);
  call = "jsonReaderRoi(" + text + ")";
  std::vector<polygon> include, exclude;
  if (!pair.real.jsonReaderRoi(text, include, exclude)) return "jsonReaderRoi refused";
  plain::Model model(pair.plain.level());
  const auto differ = [&](const std::vector<polygon>& ours, const std::vector<plain::RegionText>& texts,
                          std::size_t fewest) {
    const std::vector<plain::Region> theirs =
        model.regionsInPixels(texts, pair.plain.frmW, pair.plain.frmH, fewest);
    const auto same = [](const polygon& a, const plain::Region& b) {
      const auto samePoint = [](const pnt& p, const plain::Vertex& q) { return p.x == q.x && p.y == q.y; };
      return a.name == b.name &&
             std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(), samePoint);
    };
    return !std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(), same);
  };
  return differ(include, document.include, 3) || differ(exclude, document.exclude, 0) ? "regions differ" : "";
}

}  // namespace

std::vector<Operation> detectorOperations() {
  return {
      {"init", 25, always, init},
      {"frameProc", 400, canProcessFrame, processFrame},
      {"result", 20, always, result},
      {"terminate", 4, always, end},
      {"myjsonReader", 3, always, readScalars},
      {"jsonReaderRoi", 3, always, readRegions},
  };
}

}  // namespace orders
