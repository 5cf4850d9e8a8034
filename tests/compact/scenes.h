// Random scenes and configurations, the same for the same seed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compact/planes.h"
#include "config/polygon.h"
#include "tests/support/dice.h"

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
