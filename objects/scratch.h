// What object extraction keeps from one frame to the next.
#pragma once

#include "engine/engine_state.h"
#include "objects/label_map.h"
#include "objects/mask_bits.h"

namespace lm {

struct ObjectScratch {
  MaskBits mask;
  LabelMap labels;
};

// The engine's own, made on the first call.
inline ObjectScratch& scratchOf(kAMBLE& engine) {
  auto& objects = stateOf(engine).objects;
  if (objects == nullptr) {
    objects = {new ObjectScratch, [](ObjectScratch* scratch) { delete scratch; }};
  }
  return *objects;
}

}  // namespace lm
