// What object extraction keeps from one frame to the next.
#pragma once

#include "engine/kamble.h"
#include "objects/label_map.h"
#include "objects/mask_bits.h"

namespace lm {

struct ObjectScratch {
  MaskBits mask;
  LabelMap labels;
};

// The engine's own, made on the first call.
inline ObjectScratch& scratchOf(kAMBLE& engine) {
  if (engine.objectScratch == nullptr) engine.objectScratch = std::make_unique<ObjectScratch>();
  return *engine.objectScratch;
}

}  // namespace lm
