// The versions in use of the public kernels: one pointer per kernel, written by its dispatcher. Not exported.
#pragma once

#include "simd/simd.h"

namespace lm {

// Plain variables, written without a lock: threads whose first calls coincide store the same values.
struct Kernels {
  simd::ReplaceFn* replace = simd::detail::replace_if_u8_dispatch;
  simd::GenRdDiffFn* genRdDiff = simd::detail::gen_rd_diff_dispatch;
  simd::PruneFn* prune = simd::detail::prune_fg_by_roi_dispatch;
  simd::MatchFn* match = simd::detail::is_match_val_bgr24_dispatch;
  simd::TouchFn* touch = simd::detail::is_touch_dispatch;
};

extern Kernels kernels;

// The version of each kernel for a processor of `level`. Pure.
Kernels kernelsFor(int level);

}  // namespace lm
