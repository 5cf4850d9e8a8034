// AVX2 version of taking a frame.
#include <cassert>

#include "simd/avx2_lanes.h"
#include "simd/contracts.h"

namespace {

using std::size_t;

struct Bgr {
  std::uint8_t bytes[3];
};

// 32 pixels of three bytes.
struct Colours {
  __m256i a, b, c;

  [[gnu::always_inline]] explicit Colours(const std::uint8_t* pixels)
      : a(load32(pixels)), b(load32(pixels + 32)), c(load32(pixels + 64)) {}

  [[gnu::always_inline]] void store(std::uint8_t* pixels) const {
    store32(pixels, a);
    store32(pixels + 32, b);
    store32(pixels + 64, c);
  }

  // Non-temporal stores. `pixels`: 32-byte aligned.
  [[gnu::always_inline]] void stream(std::uint8_t* pixels) const {
    assert(reinterpret_cast<std::uintptr_t>(pixels) % 32 == 0);
    auto* groups = reinterpret_cast<__m256i*>(pixels);
    _mm256_stream_si256(groups, a);
    _mm256_stream_si256(groups + 1, b);
    _mm256_stream_si256(groups + 2, c);
  }
};

// Extracts one channel of 32 pixels of three bytes. 3 and 16 are coprime, so the wanted bytes of 48 occupy
// distinct positions modulo 16: blend, then one shuffle.
struct ChannelOf3 {
  __m256i fromSecond;
  __m256i fromThird;
  __m256i order;

  [[gnu::always_inline]] explicit ChannelOf3(int channel) {
    alignas(32) std::uint8_t second[32];
    alignas(32) std::uint8_t third[32];
    alignas(32) std::uint8_t sources[32];
    for (int i = 0; i < 32; ++i) {
      // Which of the three groups of 16 has a wanted byte at this position.
      const int byte = i % 16;
      second[i] = (byte + 16) % 3 == channel ? 0xFF : 0;
      third[i] = (byte + 32) % 3 == channel ? 0xFF : 0;
      sources[i] = static_cast<std::uint8_t>((3 * byte + channel) % 16);
    }
    fromSecond = load32(second);
    fromThird = load32(third);
    order = load32(sources);
  }

  [[gnu::always_inline]] __m256i operator()(const Colours& pixels) const {
    // Pixels 0 to 15 in the lower halves, 16 to 31 in the upper ones.
    const __m256i first = _mm256_blend_epi32(pixels.a, pixels.b, 0xF0);
    const __m256i second = _mm256_permute2x128_si256(pixels.a, pixels.c, 0x21);
    const __m256i third = _mm256_blend_epi32(pixels.b, pixels.c, 0xF0);
    const __m256i wanted =
        _mm256_blendv_epi8(_mm256_blendv_epi8(first, second, fromSecond), third, fromThird);
    return _mm256_shuffle_epi8(wanted, order);
  }
};

// `streamed`: curFrame is written with non-temporal stores: nothing reads these lines again soon.
template <bool streamed>
[[gnu::always_inline]] inline void takeBlock(const lm::FramePlanes& planes, const ChannelOf3& channel,
                                             size_t begin) {
  prefetchAhead(reinterpret_cast<const Bgr*>(planes.frame), begin);
  prefetchAhead(reinterpret_cast<const Bgr*>(planes.prevFrame), begin);
  prefetchAhead(reinterpret_cast<const Bgr*>(planes.bgImg), begin);
  prefetchAhead(planes.rdDiff, begin);
  prefetchAhead(planes.illumDiff, begin);
  const Colours frame(planes.frame + 3 * begin);
  const __m256i current = channel(frame);
  const __m256i change = differenceOf(channel(Colours(planes.prevFrame + 3 * begin)), current);
  const __m256i light = differenceOf(channel(Colours(planes.bgImg + 3 * begin)), current);
  if constexpr (streamed) {
    frame.stream(planes.curFrame + 3 * begin);
  } else {
    frame.store(planes.curFrame + 3 * begin);
  }
  frame.store(planes.prevFrame + 3 * begin);
  store32(planes.rdDiff + begin, change);
  store32(planes.illumDiff + begin, light);
}

template <bool streamed>
[[gnu::always_inline]] inline size_t takeBlocks(const lm::FramePlanes& planes, size_t begin, size_t end) {
  const ChannelOf3 channel(planes.channel);
  for (; begin + lm::blockPixels <= end; begin += lm::blockPixels)
    takeBlock<streamed>(planes, channel, begin);
  if constexpr (streamed) _mm_sfence();
  return begin;
}

}  // namespace

namespace lm {

void takeFrame_avx2(const FramePlanes& planes, size_t begin, size_t end) {
  assert(canTakeFrame(planes, begin, end));
  const bool usual = planes.channels == 3 && planes.frame != nullptr && planes.rdDiff != nullptr &&
                     planes.illumDiff != nullptr && planes.keep;
  if (usual) {
    const bool aligned = reinterpret_cast<std::uintptr_t>(planes.curFrame + 3 * begin) % 32 == 0;
    begin = aligned ? takeBlocks<true>(planes, begin, end) : takeBlocks<false>(planes, begin, end);
  }
  takeFrame_c(planes, begin, end);
}

}  // namespace lm
