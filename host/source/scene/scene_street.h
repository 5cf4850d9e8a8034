// What stands still in the built-in scene.
#pragma once

#include <opencv2/core.hpp>

#include "host/source/scene/scene_canvas.h"

namespace lm::host::source::scene {

inline constexpr int kWidth = 640;
inline constexpr int kHeight = 360;

// A wall with windows, a shop and a door, the pavement, the kerb and the road, at dusk.
cv::Mat paint_street();

// The street lamp, which has people both behind and before it.
void draw_lamp(Canvas& canvas);

// How much brighter each byte of the picture is while the lamp is on, in 256ths: 16-bit numbers, three a
// pixel.
cv::Mat lamp_light();

// Makes `image` brighter by `light` of lamp_light.
void shine(cv::Mat& image, const cv::Mat& light);

}  // namespace lm::host::source::scene
