// An engine of a picture's size, with the picture as its mask.
#pragma once

#include <cstdlib>
#include <string>

#include "tests/support/engine_fixture.h"

namespace lm::test {

struct MaskEngine : SizedEngine {
  explicit MaskEngine(const Rows& rows)
      : SizedEngine(static_cast<int>(rows.at(0).size()), static_cast<int>(rows.size()), 1) {
    put(mask, bytesOf(rows));
  }
  ~MaskEngine() { std::free(mask); }
  MaskEngine(const MaskEngine&) = delete;
  MaskEngine& operator=(const MaskEngine&) = delete;

  [[nodiscard]] std::string drawn() const { return SizedEngine::drawn(mask); }

  std::uint8_t* mask = nullptr;  // exact size, aligned as the engine's planes are
};

}  // namespace lm::test
