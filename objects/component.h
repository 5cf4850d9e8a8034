// Connected components: the record, and the boxes of labelled regions. kAMBLE::connectedComponent
// (engine/kamble.h) makes the records.
#pragma once

#include <cstdint>
#include <vector>

#include "objects/box.h"

// One 4-connected component.
struct ccObj {
  std::uint32_t label;  // value of its pixels in the label map; 2 and up
  std::int32_t count;   // number of pixels, at least 1
  std::int32_t first;   // index (row * width + column) of its first pixel in raster order
};

namespace lm {

// Box of a component in a frame of width x height: from the last empty column and row before it to the first
// after it. -1 means none before it, the frame's side (or more) none after it.
boxRect boxBetween(int left, int top, int right, int bottom, int width, int height);

}  // namespace lm

// Box of the component that holds (x0, y0) in a label image of `height` rows of `width` labels, with one
// empty pixel of margin on every side. Each search walks outward from (x0, y0) over whole rows or columns and
// ends at the first that holds no pixel of `label`, so (x0, y0) must be a pixel of the component in its top
// row. At the left or top frame border the margin is dropped (x or y is 0); at the right or bottom border the
// width or height becomes the whole frame's, whatever x or y is, so that the box then reaches past the frame.
// Searches along an axis on which (x0, y0) lies outside the frame are skipped.
boxRect findBoundingBox(std::uint32_t** rows, int label, int width, int height, int x0, int y0);

// Tight box, without margin, of all pixels equal to `label` in an image of `height` rows of `width` bytes. A
// label that is absent gives the whole frame. Not used by the library itself.
boxRect findBoundingBox(std::uint8_t** rows, int label, int width, int height);

// Makes a scratch grid of `height` rows of `width` zero bytes and releases it: a call has no effect and
// touches none of its arguments. May throw std::bad_alloc. Kept for programs that link against it.
void findFgBox(std::uint8_t** rows, int width, int height, int depth, float ratio, int& count,
               std::vector<boxRect>& boxes);
