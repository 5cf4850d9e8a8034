// The static parts of the built-in scene.
#pragma once

#include <opencv2/core.hpp>

#include "host/source/scene/scene_canvas.h"

namespace lm::host::source::scene {

inline constexpr int kWidth = 640;
inline constexpr int kHeight = 360;

// A wall with windows, a shop and a door, the pavement, the kerb and the road, at dusk.
cv::Mat paint_street();

// The street lamp; people pass both behind and in front of it.
void draw_lamp(Canvas& canvas);

// Brightness gain of each byte of the picture while the lamp is on, in 256ths: 16-bit numbers, three per
// pixel.
cv::Mat lamp_light();

// Brightens `image` by `light` (see lamp_light).
void shine(cv::Mat& image, const cv::Mat& light);

}  // namespace lm::host::source::scene
