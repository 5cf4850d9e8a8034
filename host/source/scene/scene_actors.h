// The moving objects of the built-in scene. Everything is a pure function of the frame number.
#pragma once

#include "host/source/scene/scene_canvas.h"

namespace lm::host::source::scene {

struct Walker {
  int first_frame;
  int from, to;  // where the feet start and end, in pixels across
  int ground;    // the row they walk on, in pixels
  int height;    // in pixels
  int speed;     // sixteenths of a pixel per frame
  Colour coat, trousers, hair;
};

void draw(Canvas& canvas, const Walker& walker, int frame);

// Drives in from the left, brakes and stays.
void draw_car(Canvas& canvas, int frame);

}  // namespace lm::host::source::scene
