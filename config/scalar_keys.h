// The scalar settings that a configuration document may have, in the order of the parameter list.
#pragma once

#include <cstdint>

namespace lm {

// `Sizes`: who keeps the frame's size, the detector for one.
template <typename Sizes>
struct ScalarKey {
  const char* name;
  std::int32_t Sizes::*field;  // where the value is kept as well, or null
};

template <typename S>
inline constexpr ScalarKey<S> scalarKeys[] = {
    {"frmW", &S::frmW},   {"frmH", &S::frmH},      {"frmChn", &S::frmChn}, {"sensitivity", nullptr},
    {"lcAdap", nullptr},  {"minBoxW", nullptr},    {"minBoxH", nullptr},   {"maxBoxW", nullptr},
    {"maxBoxH", nullptr}, {"lifeStatic", nullptr},
};

}  // namespace lm
