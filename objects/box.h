// Object boxes and their geometry. All four functions work in pixels, allocate nothing but the name list of a
// returned box, and accept any values: 32-bit float arithmetic throughout, conversions to int give INT32_MIN
// for what does not fit.
#pragma once

#include <string>
#include <vector>

// One object box. Inside the engine the numbers are pixels; in the list that genFgObj_ncv returns and in the
// result document they are fractions (x, width of the frame width; y, height of the frame height).
struct boxRect {
  float x = 0.0F;                  // left edge
  float y = 0.0F;                  // top edge
  float width = 0.0F;              // to the right
  float height = 0.0F;             // downwards
  std::vector<std::string> names;  // regions of interest that the box touches; copied with the box
};

// Gap between two boxes. Per axis the gap is the smaller of the two edge-to-edge distances, each truncated to
// an integer first; spans are closed, so boxes that share an edge overlap with gap 0. Both axes overlap: the
// smaller gap (boxes inside each other still give a positive number). One axis overlaps: the other axis's
// gap. None: the Euclidean distance of the two integer gaps.
float calMinDist_ncv(boxRect& a, boxRect& b);

// Euclidean distance of the boxes' (x, y) points; width and height are ignored.
float calDist_ncv(boxRect& a, boxRect& b);

// Smallest box around both, one pixel larger in width and in height than the covered span. Names are a's.
boxRect uni_ncv(boxRect& a, boxRect& b);

// Whether the union (uni_ncv) is neither wider nor higher than the two boxes side by side.
bool isOverlap(boxRect& a, boxRect& b);
