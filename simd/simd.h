// The pixel kernels: for each, the contract, the function type, the public entry point, every version and the
// dispatcher.
//
// An entry point forwards to a version that suits the processor. Its first call makes the choice. A version
// may be called directly if the processor has its level (suffixes: _c any, _sse2, _ssse3, _sse41, _avx2).
// Pointers must be valid for the stated counts; arrays need no alignment. Contracts are asserted in debug
// builds and not checked otherwise. Kernels neither allocate nor throw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <tuple>

#include "simd/cpu_level.h"

// The pixel kernels.
namespace simd {

// ---- replace ----------------------------------------------------------------------------------------------
// Every byte of [begin, end) that equals `from` becomes `to`.
using ReplaceFn = void(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to);
ReplaceFn replace_if_u8;
ReplaceFn replace_if_u8_c, replace_if_u8_sse2, replace_if_u8_sse41, replace_if_u8_avx2;

// ---- temporal difference ----------------------------------------------------------------------------------
// out[p] = |a[p * channels + channel] - b[p * channels + channel]| for each pixel p of width x height.
// The number of bytes in an image is the 32-bit product width * height * channels, wrapping; if it does not
// exceed `channel`, or if channels < 1, nothing is written. channel >= 0. `out` must not overlap `a` or `b`.
using GenRdDiffFn = void(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width,
                         int height, int channels, int channel);
GenRdDiffFn genRdDiff;
GenRdDiffFn genRdDiff_c, genRdDiff_ssse3, genRdDiff_sse41;

// ---- region pruning ---------------------------------------------------------------------------------------
// Reference (_c): clears every mask byte whose region byte is not 1. A count below 1 does nothing.
// The vector versions differ by design: they leave whole blocks (16 bytes; 32 for _avx2) unchanged and test
// byte k of the tail, the last count mod block bytes, against roi[k]. _avx2 therefore differs from _sse2 and
// _sse41 if count mod 32 is 16 or more.
using PruneFn = void(std::uint8_t* mask, const std::uint8_t* roi, int count);
PruneFn pruneFgByRoi;
PruneFn pruneFgByRoi_c, pruneFgByRoi_sse2, pruneFgByRoi_sse41, pruneFgByRoi_avx2;

// ---- colour match -----------------------------------------------------------------------------------------
// -1 if any of the first three bytes of `pixel` and `sample` differ by more than `radius`, else the sum of
// the three absolute differences (0 to 765). Reads three bytes of each argument. The 4-channel entry point is
// the same kernel: it ignores the fourth byte.
using MatchFn = int(const std::uint8_t* pixel, const std::uint8_t* sample, int radius);
MatchFn isMatchVal_bgr24, isMatchVal_bgr32;
MatchFn isMatchVal_bgr24_c, isMatchVal_bgr24_ssse3, isMatchVal_bgr24_sse41;

// ---- touch test -------------------------------------------------------------------------------------------
// Whether some element of the rectangle `box` = (x, y, w, h) has `first` 255 and `second` 1. Row r of the
// rectangle starts at index (y + r) * stride + x of both images and is not clipped. False if h < 1. `height`
// is not used. _sse2 differs by design: it tests whole blocks of 16 columns only and ignores the last w mod
// 16 columns of each row.
using TouchFn = bool(std::tuple<int, int, int, int> box, const std::uint8_t* first,
                     const std::uint8_t* second, int stride, int height);
TouchFn isTouch;
TouchFn isTouch_c, isTouch_sse2;

// ---- widening ---------------------------------------------------------------------------------------------
// dst[i] = src[i] for 0 <= i < count. The entry point is the only version.
using WidenFn = void(const std::uint8_t* src, std::uint32_t* dst, std::size_t count);
WidenFn cvt_u8_to_u32;

// The dispatchers: each chooses its kernel's version, stores it for the entry point and calls it.
namespace detail {
ReplaceFn replace_if_u8_dispatch;
GenRdDiffFn gen_rd_diff_dispatch;
PruneFn prune_fg_by_roi_dispatch;
MatchFn is_match_val_bgr24_dispatch;
TouchFn is_touch_dispatch;
}  // namespace detail

}  // namespace simd
