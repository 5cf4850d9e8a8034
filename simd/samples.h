// The size of a pixel's model, for the kernels, the engine and the settings that count samples.
#pragma once

namespace lm {

inline constexpr int samplesPerPixel = 20;  // slots of BgModel

}  // namespace lm
