// Extraction, labelling and morphology on the caller's masks.
#include <cstring>

#include "objects/component.h"
#include "tests/support/engine_fixture.h"
#include "tests/system/orders.h"

namespace orders {
namespace {

bool withPixels(const Pair& pair) { return pair.hasEngine() && pair.model().numPixel >= 1; }

// A plane of the exact size, aligned as the engine's planes are.
template <class T>
class Plane {
 public:
  explicit Plane(const std::vector<T>& values) : data_(lm::test::makePlane<T>(values.size())) {
    std::memcpy(data_, values.data(), values.size() * sizeof(T));
  }
  ~Plane() { std::free(data_); }
  Plane(const Plane&) = delete;
  Plane& operator=(const Plane&) = delete;
  T* data() { return data_; }

 private:
  T* data_;
};

// A map of the first value, with up to eight rectangles of any of the values.
template <class T>
std::vector<T> blobs(const Pair& pair, Dice& dice, const std::vector<T>& values) {
  std::vector<T> map(pair.pixels(), values[0]);
  const auto width = static_cast<std::size_t>(std::max(1, pair.sized().width));
  for (int k = dice.below(9); k > 0; --k) {
    const T value = dice.oneOf(values);
    const std::size_t first = static_cast<std::size_t>(dice.below(static_cast<int>(map.size())));
    const std::size_t columns = static_cast<std::size_t>(dice.between(1, 50));
    const std::size_t rows = static_cast<std::size_t>(dice.between(1, 30));
    for (std::size_t i = first; i < map.size() && (i - first) / width < rows; ++i) {
      if ((i - first) % width < columns) map[i] = value;
    }
  }
  return map;
}

std::string extract(Pair& pair, Dice& dice, std::string& call) {
  const bool own = dice.chance(50) && pair.model().fgMask.size() >= pair.pixels();
  const bool odd = !own && dice.chance(40);
  Bytes mask = blobs<std::uint8_t>(pair, dice, odd ? Bytes{0, 255, 1, 2, 100, 254} : Bytes{0, 255});
  if (own) std::copy_n(pair.model().fgMask.begin(), pair.pixels(), mask.begin());
  call = own ? "genFgObj_ncv(copy of fgMask)" : odd ? "genFgObj_ncv(odd blobs)" : "genFgObj_ncv(blobs)";
  Plane<std::uint8_t> plane(mask);
  const std::string difference = callBoth(
      0, [&] { return pair.engine().genFgObj_ncv(plane.data()); },
      [&] { return pair.model().objects(mask); });
  return difference.empty() ? unequalBytes(plane.data(), mask) : difference;
}

std::string unequalComponents(const std::vector<ccObj>& real, const std::vector<plain::Component>& plain) {
  if (real.size() != plain.size()) return unequal(real.size(), plain.size()) + " components";
  for (std::size_t i = 0; i < real.size(); ++i) {
    const bool same =
        real[i].label == plain[i].label && real[i].count == plain[i].count && real[i].first == plain[i].first;
    if (!same) return "component " + std::to_string(i);
  }
  return "";
}

std::string label(Pair& pair, Dice& dice, std::string& call) {
  const std::uint8_t value = static_cast<std::uint8_t>(dice.oneOf(std::array{0, 1, 2, 3, 200}));
  const bool own = dice.chance(50) && pair.model().labelMap.size() == pair.pixels();
  call = std::string("connectedComponent(") + (own ? "labelMap, " : "blobs, ") + std::to_string(value) + ")";
  if (own) {
    return unequalComponents(pair.engine().connectedComponent(pair.engine().labelMap, value),
                             pair.model().label(pair.model().labelMap, value));
  }
  std::vector<std::uint32_t> labels = blobs<std::uint32_t>(pair, dice, {0, 1, 2, 3, 200, 256});
  Plane<std::uint32_t> plane(labels);
  const std::string difference = unequalComponents(pair.engine().connectedComponent(plane.data(), value),
                                                   pair.model().label(labels, value));
  if (!difference.empty()) return difference;
  return std::equal(labels.begin(), labels.end(), plane.data()) ? "" : "labels differ";
}

struct Morphology {
  const char* name;
  int (kAMBLE::*real)(std::uint8_t*, std::uint8_t, std::uint8_t, int);
  int (plain::Model::*plain)(Bytes&, std::uint8_t, std::uint8_t, int, bool);
  bool marked;
};

std::string morph(Pair& pair, Dice& dice, std::string& call) {
  static constexpr std::array<Morphology, 4> kinds = {
      {{"dilate_ncv_fast", &kAMBLE::dilate_ncv_fast, &plain::Model::dilate, false},
       {"erode_ncv_fast", &kAMBLE::erode_ncv_fast, &plain::Model::erode, false},
       {"dilate_ncv", &kAMBLE::dilate_ncv, &plain::Model::dilate, true},
       {"erode_ncv", &kAMBLE::erode_ncv, &plain::Model::erode, true}}};
  const Morphology& kind = dice.oneOf(kinds);
  const Bytes values = {0, 1, 2, 254, 255};
  const std::uint8_t set = dice.oneOf(values), other = dice.oneOf(values);
  const int passes = dice.between(-1, 4);
  Bytes mask = blobs<std::uint8_t>(pair, dice, values);
  call = std::string(kind.name) + "(blobs, " + std::to_string(set) + ", " + std::to_string(other) + ", " +
         std::to_string(passes) + ")";
  Plane<std::uint8_t> plane(mask);
  const std::string difference = callBoth(
      0, [&] { return (pair.engine().*kind.real)(plane.data(), set, other, passes); },
      [&] { return (pair.model().*kind.plain)(mask, set, other, passes, kind.marked); });
  return difference.empty() ? unequalBytes(plane.data(), mask) : difference;
}

}  // namespace

std::vector<Operation> objectOperations() {
  return {
      {"genFgObj_ncv", 120, withPixels, extract},
      {"connectedComponent", 15, withPixels, label},
      {"morphology", 30, withPixels, morph},
  };
}

}  // namespace orders
