// Regions of the frame: the polygon record and the five functions that convert polygons to byte masks.
//
// Masks are arrays of w x h bytes in row order (index y * w + x), 0 outside and 1 inside, owned by the
// caller. No function here allocates, keeps a pointer, prints or throws.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One vertex, in whole pixels. May lie outside the frame.
struct pnt {
  std::int32_t x;  // column
  std::int32_t y;  // row
};

// A named region. The outline is closed implicitly (last vertex to first), in either orientation; one that
// crosses itself is filled by the even-odd rule.
struct polygon {
  std::string name;         // as in the document; may be empty
  std::vector<pnt> points;  // vertices in drawing order
  // The region's own mask, frame-sized, or null until kAMBLE::setParam rasterises it. Made with `new[]`.
  // Copying a polygon copies the pointer, not the bytes: the copies in the engine own the masks, which its
  // destructor releases; every other copy borrows.
  std::uint8_t* mask = nullptr;
};

// Whether (testx, testy) lies inside the polygon with vertices (vertx[i], verty[i]), 0 <= i < nvert.
// Even-odd crossing test after W. R. Franklin; an edge counts where its crossing lies strictly right of the
// point: of an axis-aligned square the left and top edges are inside, the right and bottom edges outside.
// Returns 1 inside, 0 outside; 0 without reading the arrays when nvert < 1. The library itself does not use
// it.
int pnpoly(int nvert, float* vertx, float* verty, float testx, float testy);

// The same test on a vertex list, except that an edge through the point counts as well (>= instead of >):
// of an axis-aligned square the right and top edges are inside, the left and bottom edges outside.
// Returns 1 inside, 0 outside; 0 for an empty list.
int isWithinPoly(const std::vector<pnt>& poly, float x, float y);

// Rasterises `poly` into `mask` (w x h bytes): 1 where isWithinPoly holds for the pixel's integer coordinates
// (no half-pixel offset), 0 elsewhere. Writes nothing when w or h is not positive. Returns 1.
int cvtPoly2Mask(const std::vector<pnt>& poly, std::uint8_t* mask, int w, int h);

// dst := dst or src. Bytes of `dst` that are 0 become 1 where `src` is not 0; others keep their value.
// The pixel count is the 32-bit product w * h, wrapping; nothing happens when it is below 1. dst may equal
// src.
void unionMask(std::uint8_t* dst, std::uint8_t* src, int w, int h);

// dst := dst and not src. Bytes of `dst` become 0 where `src` is not 0. Count and aliasing as above.
void unionNegMask(std::uint8_t* dst, std::uint8_t* src, int w, int h);
