// Attaching to each box the names of the regions of interest that its foreground touches.
#pragma once

#include <cstdint>
#include <vector>

#include "config/polygon.h"
#include "objects/box.h"

// Appends to every box, in list order, the name of every region, in list order, for which some pixel of the
// box has `fgMask` 255 and region mask 1 (simd::isTouch). The box (pixels) is truncated to whole numbers
// first. Names that a box already carries stay, and no name is checked for being there already. `fgMask` and
// every region mask: width x height bytes. A box may reach past the frame: indices run on into the next row
// as they do inside, but nothing before the first or after the last pixel of the frame is read, and nothing
// there matches. Regions without a mask touch nothing. In the pipeline the mask holds 1 for foreground at
// this point, so no name is ever added there.
void addRoiName2Obj(std::vector<boxRect>& boxes, const std::vector<polygon>& regions,
                    const std::uint8_t* fgMask, int width, int height);

// Whether some pixel (column c, row r) of the frame with x <= c < int(x + width), y <= r < int(y + height)
// has `fgMask` 255 and `regionMask` 1. Clipped to the frame. Not used by the library itself.
bool isTouch(const boxRect& box, const std::uint8_t* fgMask, const std::uint8_t* regionMask, int width,
             int height);
