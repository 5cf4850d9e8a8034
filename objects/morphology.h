// Erosion and dilation of byte masks, in place. Three families:
//
//   list    kAMBLE::dilate_ncv_fast, erode_ncv_fast   morphology_list.cpp    used by object extraction
//   marker  kAMBLE::dilate_ncv, erode_ncv             morphology_marker.cpp  not used by the library itself
//   rows    dilate_ncv2, erode_ncv2 (below)           morphology_rows.cpp    not used by the library itself
//
// All use the 4-neighbourhood; neighbours outside the frame are skipped, so the frame edge neither erodes nor
// dilates. Masks may hold any byte values; each call says which value is set and which is cleared. The
// contracts of the engine's members are in engine/kamble.h.
#pragma once

#include <cstdint>

// Grows the regions of value `set` by the diamond |dx| + |dy| <= radius within the frame: every pixel of it
// that is not `set` becomes `set`. On the way such pixels hold a marker (set + 2, or set - 2 when set >=
// 254), and bytes that held the marker value before the call become `set` too. `rows`: `height` pointers to
// rows of `width` bytes. Returns 1; 0 without touching the mask when radius < 1 or 2 * radius exceeds the
// shorter side.
int dilate_ncv2(std::uint8_t** rows, std::uint8_t set, int width, int height, int radius);

// Peels `radius` layers off every region of value 255 where it borders pixels of value `cleared`. The set
// value is 255 whatever the arguments. The marker (cleared + 2, or cleared - 2 when cleared >= 254) turns
// into `cleared` after every pass, also where a byte held it before the call. Arguments and results as above.
int erode_ncv2(std::uint8_t** rows, std::uint8_t cleared, int width, int height, int radius);
