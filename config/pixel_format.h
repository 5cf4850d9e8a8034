// The formats of a frame's pixels.
#pragma once

#include <cstdint>

namespace lm {

// Numbered as in lightmotion.h.
enum class PixelFormat : std::int32_t { unknown, grey, bgr, rgb, bgrx, rgbx, i420, nv12 };

struct FormatRow {
  PixelFormat format;
  const char* name;       // in a configuration
  std::int32_t channels;  // bytes of a pixel; of the luma plane where there are planes
  bool redFirst;
};

inline constexpr FormatRow formatTable[] = {
    {PixelFormat::grey, "grey", 1, false}, {PixelFormat::bgr, "bgr", 3, false},
    {PixelFormat::rgb, "rgb", 3, true},    {PixelFormat::bgrx, "bgrx", 4, false},
    {PixelFormat::rgbx, "rgbx", 4, true},  {PixelFormat::i420, "i420", 1, false},
    {PixelFormat::nv12, "nv12", 1, false},
};

}  // namespace lm
