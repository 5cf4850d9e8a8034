// The slow refresh of a pixel's samples, for both engines.
#pragma once

namespace lm {

inline constexpr unsigned refreshCycle = 16;  // a qualifying pixel is refreshed once in so many frames
inline constexpr unsigned refreshTurn = 1;    // position in the cycle at which it is
inline constexpr int refreshRest = 15;        // frames that it then rests

}  // namespace lm
