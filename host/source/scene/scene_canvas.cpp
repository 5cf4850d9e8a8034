#include "host/source/scene/scene_canvas.h"

#include <algorithm>
#include <cstdlib>

namespace lm::host::source::scene {
namespace {

using Wide = std::int64_t;

Wide root(Wide value) {
  Wide result = 0;
  for (Wide bit = Wide{1} << 30; bit > 0; bit >>= 1) {
    if ((result + bit) * (result + bit) <= value) result += bit;
  }
  return result;
}

// Coverage of a pixel in 256ths, given the distance of its centre inside the edge.
int soft_edge(Wide inside) { return static_cast<int>(std::clamp<Wide>(128 + inside * 256 / kPixel, 0, 256)); }

std::uint8_t mix(int under, int over, int opacity) {
  return static_cast<std::uint8_t>(std::clamp((under * (256 - opacity) + over * opacity) >> 8, 0, 255));
}

struct Paint {
  Colour colour;
  int opacity;
};

}  // namespace

Colour shaded(Colour colour, int in_256ths) {
  const auto part = [in_256ths](int value) { return std::clamp(value * in_256ths / 256, 0, 255); };
  return {part(colour.blue), part(colour.green), part(colour.red)};
}

Spot operator+(Spot a, Spot b) { return {a.x + b.x, a.y + b.y}; }

Spot pixels(int x, int y) { return {x * kPixel, y * kPixel}; }

// Bhaskara's rational approximation; its error of 0.2 % moves no limb by a pixel.
int sine(int angle) {
  const int turned = angle & 1023;
  const Wide u = turned & 511;
  const Wide p = u * (512 - u);
  const int value = static_cast<int>((16 * p << 14) / (Wide{5} * 512 * 512 - 4 * p));
  return turned < 512 ? value : -value;
}

Spot hanging(Spot from, int length, int angle) {
  return {from.x + length * sine(angle) / 16384, from.y + length * sine(angle + 256) / 16384};
}

std::uint32_t scrambled(std::uint32_t value) {
  value = (value ^ (value >> 16)) * 0x7feb352dU;
  value = (value ^ (value >> 15)) * 0x846ca68bU;
  return value ^ (value >> 16);
}

// Calls `coverage` with the centre of every pixel between the corners and blends in the paint that it
// returns.
template <typename Coverage>
void Canvas::fill(Spot low, Spot high, Coverage coverage) {
  const int left = std::max(0, low.x / kPixel - 1);
  const int right = std::min(image_.cols - 1, high.x / kPixel + 1);
  const int top = std::max(0, low.y / kPixel - 1);
  const int bottom = std::min(image_.rows - 1, high.y / kPixel + 1);
  for (int y = top; y <= bottom; ++y) {
    for (int x = left; x <= right; ++x) {
      const Paint paint = coverage(Spot{x * kPixel + kPixel / 2, y * kPixel + kPixel / 2});
      if (paint.opacity <= 0) continue;
      auto& pixel = image_.at<cv::Vec3b>(y, x);
      pixel[0] = mix(pixel[0], paint.colour.blue, paint.opacity);
      pixel[1] = mix(pixel[1], paint.colour.green, paint.opacity);
      pixel[2] = mix(pixel[2], paint.colour.red, paint.opacity);
    }
  }
}

void Canvas::limb(Spot from, Spot to, int from_radius, int to_radius, Colour colour) {
  const Wide along_x = to.x - from.x;
  const Wide along_y = to.y - from.y;
  const Wide length2 = along_x * along_x + along_y * along_y;
  const Wide length = std::max<Wide>(1, root(length2));
  const int reach = std::max(from_radius, to_radius);
  const Spot low{std::min(from.x, to.x) - reach, std::min(from.y, to.y) - reach};
  const Spot high{std::max(from.x, to.x) + reach, std::max(from.y, to.y) + reach};
  fill(low, high, [=](Spot spot) -> Paint {
    const Wide x = spot.x - from.x;
    const Wide y = spot.y - from.y;
    const Wide forward = std::clamp<Wide>(x * along_x + y * along_y, 0, length2);
    const Wide off_x = length2 == 0 ? x : x - along_x * forward / length2;
    const Wide off_y = length2 == 0 ? y : y - along_y * forward / length2;
    const Wide radius = length2 == 0 ? reach : from_radius + (to_radius - from_radius) * forward / length2;
    if (radius <= 0) return {colour, 0};
    // Near the edge, (r*r - d*d) / 2r approximates r - d without a square root.
    const Wide inside = (radius * radius - off_x * off_x - off_y * off_y) / (2 * radius);
    const Wide left_of_axis =
        length2 == 0 ? -x : (y * along_x - x * along_y) * (along_y < 0 ? -1 : 1) / length;
    const auto light = static_cast<int>(256 + std::clamp<Wide>(left_of_axis * 72 / radius, -72, 72));
    return {shaded(colour, light), soft_edge(inside)};
  });
}

void Canvas::polygon(const std::vector<Spot>& corners, Colour colour, int opacity) {
  struct Edge {
    Wide x, y, along_x, along_y, length;
  };
  std::vector<Edge> edges;
  Wide area = 0;
  Spot low = corners.front();
  Spot high = low;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Spot a = corners[i];
    const Spot b = corners[(i + 1) % corners.size()];
    area += Wide{a.x} * b.y - Wide{b.x} * a.y;
    const Wide x = b.x - a.x;
    const Wide y = b.y - a.y;
    edges.push_back({a.x, a.y, x, y, std::max<Wide>(1, root(x * x + y * y))});
    low = {std::min(low.x, a.x), std::min(low.y, a.y)};
    high = {std::max(high.x, a.x), std::max(high.y, a.y)};
  }
  const int turn = area < 0 ? -1 : 1;
  fill(low, high, [&](Spot spot) -> Paint {
    Wide inside = Wide{1} << 20;
    for (const Edge& edge : edges) {
      const Wide cross = edge.along_x * (spot.y - edge.y) - edge.along_y * (spot.x - edge.x);
      inside = std::min(inside, turn * cross / edge.length);
    }
    return {colour, soft_edge(inside) * opacity / 256};
  });
}

void Canvas::rectangle(int left, int top, int width, int height, Colour colour, int opacity) {
  const Spot from = pixels(left, top);
  const Spot to = pixels(left + width, top + height);
  polygon({from, {to.x, from.y}, to, {from.x, to.y}}, colour, opacity);
}

void Canvas::shadow(Spot centre, int radius_x, int radius_y, int strength) {
  const Wide rx2 = Wide{radius_x} * radius_x;
  const Wide ry2 = Wide{radius_y} * radius_y;
  fill({centre.x - radius_x, centre.y - radius_y}, {centre.x + radius_x, centre.y + radius_y},
       [=](Spot spot) -> Paint {
         const Wide x = spot.x - centre.x;
         const Wide y = spot.y - centre.y;
         const Wide inside = 256 - x * x * 256 / rx2 - y * y * 256 / ry2;
         return {{0, 0, 0}, static_cast<int>(std::max<Wide>(0, inside) * strength / 256)};
       });
}

}  // namespace lm::host::source::scene
