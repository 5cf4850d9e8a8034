#include "compact/kernels.h"

#include "simd/cpu_level.h"

namespace lm::compact {

#if defined(__x86_64__)

const Kernels& kernelsFor(int level) {
  static constexpr Kernels base{sse2::takeRow, sse2::learnRow, sse2::splitRow, sse2::seedRow};
  static constexpr Kernels middle{sse41::takeRow, sse41::learnRow, sse41::splitRow, sse41::seedRow};
  static constexpr Kernels high{avx2::takeRow, avx2::learnRow, avx2::splitRow, avx2::seedRow};
  if (level >= simd::level::avx2) return high;
  return level >= simd::level::sse41 ? middle : base;
}

#else

const Kernels& kernelsFor(int /*level*/) {
  static constexpr Kernels only{avx2::takeRow, avx2::learnRow, avx2::splitRow, avx2::seedRow};
  return only;
}

#endif

}  // namespace lm::compact
