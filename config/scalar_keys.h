// The scalar settings of a configuration document, in the order of the parameter list.
#pragma once

#include <cstdint>

namespace lm {

// `Sizes`: the record that holds the frame size.
template <typename Sizes>
struct ScalarKey {
  const char* name;
  std::int32_t Sizes::*field;  // where the value is stored too, or null
};

template <typename S>
inline constexpr ScalarKey<S> scalarKeys[] = {
    {"frmW", &S::frmW},   {"frmH", &S::frmH},      {"frmChn", &S::frmChn}, {"sensitivity", nullptr},
    {"lcAdap", nullptr},  {"minBoxW", nullptr},    {"minBoxH", nullptr},   {"maxBoxW", nullptr},
    {"maxBoxH", nullptr}, {"lifeStatic", nullptr},
};

}  // namespace lm
