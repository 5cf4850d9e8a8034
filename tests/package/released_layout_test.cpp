// Programs that were built with a release's C++ headers find the public fields where these programs look.
#include <gtest/gtest.h>

#include <cstddef>

#include "engine/kamble.h"
#include "objects/component.h"
#include "plugin/detector.h"
#include "plugin/instance.h"
#include "simd/cpu_level.h"

namespace {

struct Place {
  const char* what;
  std::size_t released;
  std::size_t now;
};

constexpr Place places[] = {
#define SIZE(record, bytes) {"size of " #record, bytes, sizeof(record)},
#define FIELD(record, name, offset) {#record "::" #name, offset, offsetof(record, name)},
#include "tests/package/released_layout.inc"
#undef FIELD
#undef SIZE
};

TEST(ReleasedLayout, EveryPublicFieldIsInItsPlace) {
  for (const auto& [what, released, now] : places) {
    EXPECT_EQ(now, released) << what << " moved: this takes a new major version (docs/compatibility.md)";
  }
}

}  // namespace
