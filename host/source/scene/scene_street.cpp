#include "host/source/scene/scene_street.h"

#include <algorithm>
#include <cstdint>

namespace lm::host::source::scene {
namespace {

constexpr int kPavementTop = 196;
constexpr int kKerbTop = 266;
constexpr int kRoadTop = 274;
constexpr Spot kLampHead{470 * kPixel, 44 * kPixel};

// A pseudorandom number from -range to range for a position.
int grain(int x, int y, int range) {
  const auto place = static_cast<std::uint32_t>(y * 4096 + x);
  return static_cast<int>(scrambled(place) % static_cast<std::uint32_t>(2 * range + 1)) - range;
}

Colour brick(int x, int y) {
  const int row = y / 8;
  const int column = (x + row % 2 * 10) / 20;
  const bool mortar = y % 8 == 0 || (x + row % 2 * 10) % 20 == 0;
  if (mortar) return {98, 104, 112};
  return shaded({64, 76, 124}, 256 + grain(column, row, 30));
}

Colour paving(int x, int y) {
  // Rows grow taller towards the viewer, like slabs in perspective.
  const int depth = y - kPavementTop;
  int row = 0;
  int top = 0;
  while (top + 10 + 3 * row <= depth) top += 10 + 3 * row++;
  const int width = 34 + 5 * row;
  const int shifted = x + row % 2 * width / 2;
  if (depth == top || shifted % width == 0) return {92, 92, 90};
  return shaded({122, 124, 122}, 256 + grain(shifted / width, row + 900, 14));
}

Colour ground(int x, int y) {
  if (y < kPavementTop) return shaded(brick(x, y), 286 - y / 4);
  if (y < kKerbTop) return paving(x, y);
  if (y < kRoadTop) return x % 60 == 0 ? Colour{110, 112, 112} : Colour{150, 152, 150};
  const bool line = y >= 344 && y < 350 && (x + 20) % 110 < 60;
  return line ? Colour{150, 160, 162} : Colour{76, 74, 72};
}

void paint_window(Canvas& canvas, int left, int top, bool lit) {
  canvas.rectangle(left - 5, top - 5, 54, 74, {150, 156, 160});
  canvas.rectangle(left - 9, top + 68, 62, 7, {164, 168, 172});
  for (const int pane_x : {0, 23}) {
    for (const int pane_y : {0, 33}) {
      const Colour glass = lit ? Colour{110, 190, 232} : Colour{92, 78, 58};
      canvas.rectangle(left + pane_x, top + pane_y, 21, 31, glass);
      const Spot corner = pixels(left + pane_x, top + pane_y);
      canvas.polygon(
          {corner + pixels(3, 31), corner + pixels(15, 0), corner + pixels(21, 0), corner + pixels(9, 31)},
          {200, 190, 170}, lit ? 40 : 48);
    }
  }
  if (!lit) return;
  canvas.rectangle(left, top, 8, 64, {70, 120, 190}, 150);
  canvas.rectangle(left + 36, top, 8, 64, {70, 120, 190}, 150);
}

void paint_door(Canvas& canvas, int left) {
  canvas.rectangle(left - 6, 78, 60, 118, {150, 156, 160});
  canvas.rectangle(left, 84, 48, 112, {84, 62, 34});
  for (const int panel : {90, 148})
    canvas.rectangle(left + 8, panel, 32, panel == 90 ? 46 : 40, {104, 78, 46});
  canvas.disc(pixels(left + 42, 144), 2 * kPixel, {70, 170, 200});
  canvas.rectangle(left - 10, 190, 68, 8, {138, 140, 140});
}

void paint_shop(Canvas& canvas, int left) {
  canvas.rectangle(left - 8, 58, 196, 138, {52, 70, 46});
  canvas.rectangle(left, 96, 180, 82, {96, 168, 214});
  for (int shelf = 0; shelf < 3; ++shelf) {
    const int y = 118 + 22 * shelf;
    canvas.rectangle(left, y + 14, 180, 3, {50, 84, 110});
    for (int item = 0; item < 15; ++item) {
      const int height = 8 + (grain(item, shelf + 70, 3) + 3);
      const Colour goods{90 + grain(item, shelf, 50), 110 + grain(item, shelf + 20, 50),
                         150 + grain(item, shelf + 40, 60)};
      canvas.rectangle(left + 4 + 12 * item, y + 14 - height, 8, height, goods);
    }
  }
  for (const int post : {58, 118}) canvas.rectangle(left + post, 96, 4, 82, {52, 70, 46});
  for (int stripe = 0; stripe < 12; ++stripe) {
    const int from = left - 10 + 200 * stripe / 12;
    const int to = left - 10 + 200 * (stripe + 1) / 12;
    const Colour cloth = stripe % 2 == 0 ? Colour{60, 52, 168} : Colour{196, 210, 214};
    canvas.polygon({pixels(from, 66), pixels(to, 66), pixels(to + (to - left - 90) / 14, 98),
                    pixels(from + (from - left - 90) / 14, 98)},
                   cloth);
  }
}

void paint_planter(Canvas& canvas, int left) {
  canvas.shadow(pixels(left + 26, 212), 40 * kPixel, 6 * kPixel, 130);
  for (int leaf = 0; leaf < 90; ++leaf) {
    const Spot centre = pixels(left + 26 + grain(leaf, 1, 27), 168 + grain(leaf, 2, 16));
    canvas.disc(centre, (4 + leaf % 3) * kPixel,
                {44 + grain(leaf, 3, 14), 92 + grain(leaf, 4, 26), 52 + grain(leaf, 5, 16)});
  }
  canvas.polygon({pixels(left, 182), pixels(left + 52, 182), pixels(left + 47, 212), pixels(left + 5, 212)},
                 {78, 96, 128});
  canvas.rectangle(left - 2, 180, 56, 5, {92, 112, 146});
}

void roughen(cv::Mat& image) {
  for (int y = 0; y < image.rows; ++y) {
    for (int x = 0; x < image.cols; ++x) {
      const int change = grain(x, y + 2000, y >= kRoadTop ? 9 : 5);
      for (int c = 0; c < 3; ++c) {
        auto& byte = image.at<cv::Vec3b>(y, x)[c];
        byte = static_cast<std::uint8_t>(std::clamp(byte + change, 0, 255));
      }
    }
  }
}

}  // namespace

cv::Mat paint_street() {
  cv::Mat image(kHeight, kWidth, CV_8UC3);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const Colour colour = ground(x, y);
      image.at<cv::Vec3b>(y, x) =
          cv::Vec3b(static_cast<std::uint8_t>(colour.blue), static_cast<std::uint8_t>(colour.green),
                    static_cast<std::uint8_t>(colour.red));
    }
  }
  Canvas canvas(image);
  canvas.rectangle(0, 184, kWidth, 12, {84, 86, 92});
  canvas.shadow(pixels(kWidth / 2, kPavementTop), kWidth * kPixel, 14 * kPixel, 90);
  canvas.shadow(pixels(kWidth / 2, kRoadTop), kWidth * kPixel, 8 * kPixel, 110);
  paint_window(canvas, 40, 84, true);
  paint_window(canvas, 400, 84, false);
  paint_window(canvas, 560, 84, true);
  paint_door(canvas, 120);
  paint_shop(canvas, 200);
  paint_planter(canvas, 404);
  roughen(image);
  return image;
}

void draw_lamp(Canvas& canvas) {
  const Colour iron{46, 46, 42};
  const Spot foot = pixels(500, 254);
  canvas.shadow(foot, 14 * kPixel, 4 * kPixel, 150);
  canvas.limb(pixels(500, 48), foot, 2 * kPixel, 3 * kPixel, iron);
  canvas.limb(pixels(500, 228), foot, 4 * kPixel, 5 * kPixel, iron);
  canvas.limb(pixels(500, 48), pixels(488, 34), 2 * kPixel, 2 * kPixel, iron);
  canvas.limb(pixels(470, 36), pixels(488, 34), 2 * kPixel, 2 * kPixel, iron);
  canvas.polygon({pixels(458, 44), pixels(463, 35), pixels(477, 35), pixels(482, 44)}, iron);
  canvas.rectangle(462, 44, 16, 4, {150, 170, 176});
}

cv::Mat lamp_light() {
  cv::Mat light(kHeight, kWidth, CV_16UC3);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int dx = x - kLampHead.x / kPixel;
      const int dy = y - kLampHead.y / kPixel;
      const bool above = dy < 0;
      // A glow around the lamp and a wide pool below it.
      const int glow = 150 * 900 / (900 + dx * dx + dy * dy * (above ? 6 : 1));
      const int reach = 40 + dy * 5 / 12;
      const int pool = above ? 0 : std::max(0, 200 - dx * dx * 200 / (reach * reach));
      const int gain = glow + pool * std::max(0, 250 - dy) / 250;
      light.at<cv::Vec3w>(y, x) =
          cv::Vec3w(static_cast<std::uint16_t>(256 + gain * 5 / 10),
                    static_cast<std::uint16_t>(256 + gain * 8 / 10), static_cast<std::uint16_t>(256 + gain));
    }
  }
  return light;
}

void shine(cv::Mat& image, const cv::Mat& light) {
  auto* byte = image.ptr<std::uint8_t>();
  const auto* gain = light.ptr<std::uint16_t>();
  const std::size_t bytes = image.total() * image.elemSize();
  for (std::size_t i = 0; i < bytes; ++i) {
    byte[i] = static_cast<std::uint8_t>(std::min<std::uint32_t>(255, byte[i] * std::uint32_t{gain[i]} >> 8));
  }
}

}  // namespace lm::host::source::scene
