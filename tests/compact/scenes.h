// Random scenes and configurations, the same for the same seed.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "compact/planes.h"
#include "config/polygon.h"

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : engine_(seed) {}
  int below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(limit)); }
  int from(int low, int high) { return low + below(high - low + 1); }
  bool chance(int percent) { return below(100) < percent; }
  template <typename T>
  T oneOf(std::initializer_list<T> values) {
    return values.begin()[below(static_cast<int>(values.size()))];
  }
  double normal(double deviation) { return deviation * normal_(engine_); }

 private:
  std::mt19937 engine_;
  std::normal_distribution<double> normal_{0, 1};
};

enum class Kind { passing, stopping, blinking, brightening, dimming, arbitrary };

struct Scene {
  lm::compact::Shape shape;
  Kind kind;
  double noise;
};

Kind anyKind(Dice& dice);

// A textured background and a rectangle, with Gaussian noise.
std::vector<std::uint8_t> draw(const Scene& scene, int frame, Dice& dice);

polygon polygonOf(std::vector<pnt> points);
// A region around the whole frame.
polygon wholeOf(const lm::compact::Shape& shape);
// A polygon whose corners may lie a little outside the frame.
polygon anyPolygon(const lm::compact::Shape& shape, Dice& dice);

std::vector<std::string> sizeEntries(const lm::compact::Shape& shape);
// Settings of a document, and those only a parameter list can have.
std::vector<std::string> anyDocumentEntries(Dice& dice);
std::vector<std::string> anyFurtherEntries(Dice& dice);
