// The boxes of a frame: by kind of event, and how much of the frame they cover.
#pragma once

#include "host/detector/box.h"

namespace lm::host::events {

using detector::Box;
using detector::Boxes;

enum class EventKind {
  kMotion,
  kLight,  // a lighting change
};

// Those that belong to an event of this kind.
Boxes boxes_of_kind(const Boxes& boxes, EventKind kind);

// The share of the frame under boxes, 0 to 1. Boxes may overlap and extend beyond the frame.
double share_under(const Boxes& boxes);

}  // namespace lm::host::events
