// Writes to the planes and to the model.
#include "tests/system/orders.h"

namespace orders {
namespace {

// Random values for consecutive elements, from a seed, so that both sides get the same.
struct Span {
  std::size_t first, count;
  std::uint32_t seed;
  int low, high;
};

Span anySpan(Dice& dice, std::size_t size, int low, int high) {
  const std::size_t first = static_cast<std::size_t>(dice.below(static_cast<int>(size)));
  const std::size_t count = static_cast<std::size_t>(dice.between(1, 300));
  // Half of the spans hold one value throughout.
  const bool even = dice.chance(50);
  const int value = dice.between(low, high);
  return {first, std::min(count, size - first), static_cast<std::uint32_t>(dice.below(1 << 20)),
          even ? value : low, even ? value : high};
}

template <class T>
void fill(T* plane, const Span& span, int step) {
  Dice dice(span.seed);
  for (std::size_t i = 0; i < span.count; ++i) {
    plane[span.first + i] = static_cast<T>(step * dice.between(span.low, span.high));
  }
}

struct PlaneKind {
  const char* name;
  int low, high, step;
  std::size_t (*size)(const plain::Model&);
  void (*write)(Pair&, const Span&, int step);
};

#define PLANE(name, low, high, step)                                                           \
  {                                                                                            \
#name, low, high, step, [](const plain::Model& model) { return model.name.size(); },         \
        [](Pair& pair, const Span& span, int by) {                                           \
          fill(pair.engine().name, span, by);                                                \
          fill(pair.model().name.data(), span, by);                                          \
        } \
  }

constexpr PlaneKind planes[] = {
    PLANE(fgMask, 0, 1, 255),      PLANE(prevFgMask, 0, 1, 255),   PLANE(fgMask, 0, 255, 1),
    PLANE(prevFgMask, 0, 3, 1),    PLANE(absorbMask, 254, 255, 1), PLANE(roiMask, 0, 3, 1),
    PLANE(labelMap, 0, 3, 1),      PLANE(bgImg, 0, 255, 1),        PLANE(curFrame, 0, 255, 1),
    PLANE(prevFrame, 0, 255, 1),   PLANE(illumDiff, 0, 60, 1),     PLANE(rdDiff, 0, 60, 1),
    PLANE(absorbMask, 0, 1, 255),  PLANE(roiMask, 0, 1, 1),        PLANE(updTimer, -2, 16, 1),
    PLANE(minDist, 0, 70, 1),      PLANE(fgLife, 0, 30, 1),        PLANE(sampleCursor, 0, 19, 1),
    PLANE(refreshCount, 0, 15, 1), PLANE(nbrCursor, 0, 12, 1),  // of at least 13 neighbours
};

#undef PLANE

bool withEngine(const Pair& pair) { return pair.hasEngine(); }

std::string writePlane(Pair& pair, Dice& dice, std::string& call) {
  const PlaneKind& kind = planes[dice.below(static_cast<int>(std::size(planes)))];
  call = std::string(kind.name) + " is empty";
  const std::size_t size = kind.size(pair.model());
  if (size == 0) return "";
  const Span span = anySpan(dice, size, kind.low, kind.high);
  call = std::string(kind.name) + " from " + std::to_string(span.first) + ", " + std::to_string(span.count);
  kind.write(pair, span, kind.step);
  return "";
}

bool withModel(const Pair& pair) { return pair.hasEngine() && !pair.model().bgModel.empty(); }

// Writes one slot, in the bytes that the frames have.
std::string writeSamples(Pair& pair, Dice& dice, std::string& call) {
  const Span span = anySpan(dice, pair.model().bgModel.size(), 0, 255);
  const std::size_t slot = static_cast<std::size_t>(dice.below(20));
  const std::size_t bytes = static_cast<std::size_t>(std::min(4, pair.channels));
  call = "bgModel from " + std::to_string(span.first) + ", " + std::to_string(span.count) + ", slot " +
         std::to_string(slot);
  Dice values(span.seed);
  for (std::size_t i = span.first; i < span.first + span.count; ++i) {
    for (std::size_t c = 0; c < bytes; ++c) {
      const std::uint8_t value = static_cast<std::uint8_t>(values.between(span.low, span.high));
      pair.engine().bgModel[i].samples[slot][c] = pair.model().bgModel[i][slot][c] = value;
    }
  }
  return "";
}

}  // namespace

std::vector<Operation> planeOperations() {
  return {
      {"plane", 40, withEngine, writePlane},
      {"bgModel", 4, withModel, writeSamples},
  };
}

}  // namespace orders
