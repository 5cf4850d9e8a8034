// Names of parametrised tests.
#pragma once

#include <string>

namespace lm::test {

// Names a test after its case's `name`.
inline constexpr auto byName = [](const auto& info) { return std::string(info.param.name); };

}  // namespace lm::test
