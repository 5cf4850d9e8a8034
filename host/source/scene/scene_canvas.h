// Anti-aliased shapes in integer arithmetic, so that the built-in scene has the same bytes on every machine.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

namespace lm::host::source::scene {

struct Colour {
  int blue, green, red;
};

// A colour lightened (above 256) or darkened.
Colour shaded(Colour colour, int in_256ths);

// Positions and lengths on the canvas are in sixteenths of a pixel.
constexpr int kPixel = 16;

struct Spot {
  int x, y;
};

Spot operator+(Spot a, Spot b);
Spot pixels(int x, int y);

// Angles in 1024ths of a turn; the result in 16384ths.
int sine(int angle);

// The end of a line of this length that hangs from `from`, turned by `angle` to the right.
Spot hanging(Spot from, int length, int angle);

// A pseudorandom number that depends only on its argument.
std::uint32_t scrambled(std::uint32_t value);

class Canvas {
 public:
  // `image`: 8-bit blue, green, red; drawn into, not owned. Shapes may extend beyond its edges.
  explicit Canvas(cv::Mat& image) : image_(image) {}

  // A rounded bar whose radius changes linearly from one end to the other; lit from the left when `from` is
  // above `to`.
  void limb(Spot from, Spot to, int from_radius, int to_radius, Colour colour);
  void disc(Spot centre, int radius, Colour colour) { limb(centre, centre, radius, radius, colour); }

  // A convex polygon in either orientation; `opacity` in 256ths.
  void polygon(const std::vector<Spot>& corners, Colour colour, int opacity = 256);
  void rectangle(int left, int top, int width, int height, Colour colour, int opacity = 256);  // in pixels

  // Darkens an ellipse, most at its centre, by `strength` 256ths.
  void shadow(Spot centre, int radius_x, int radius_y, int strength);

 private:
  template <typename Coverage>
  void fill(Spot low, Spot high, Coverage coverage);

  cv::Mat& image_;
};

}  // namespace lm::host::source::scene
