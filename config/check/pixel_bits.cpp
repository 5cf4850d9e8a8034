#include "config/check/pixel_bits.h"

#include <bit>

namespace lm::check {
namespace {

constexpr std::size_t wordBits = 32;

}  // namespace

PixelBits::PixelBits(std::int32_t width, std::int32_t height)
    : width_(width),
      perRow_((static_cast<std::size_t>(width) + wordBits - 1) / wordBits),
      words_(perRow_ * static_cast<std::size_t>(height)) {}

PixelBits::PixelBits(const std::uint8_t* mask, std::int32_t width, std::int32_t height)
    : PixelBits(width, height) {
  for (std::size_t row = 0; row < words_.size(); row += perRow_) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(width_); ++x) {
      words_[row + x / wordBits] |= std::uint32_t{*mask++ != 0} << (x % wordBits);
    }
  }
}

void PixelBits::fill() {
  const std::size_t inLast = static_cast<std::size_t>(width_) - (perRow_ - 1) * wordBits;
  const std::uint32_t last = ~std::uint32_t{0} >> (wordBits - inLast);
  for (std::size_t i = 0; i < words_.size(); ++i)
    words_[i] = (i + 1) % perRow_ == 0 ? last : ~std::uint32_t{0};
}

void PixelBits::add(const PixelBits& other) {
  for (std::size_t i = 0; i < words_.size(); ++i) words_[i] |= other.words_[i];
}

void PixelBits::remove(const PixelBits& other) {
  for (std::size_t i = 0; i < words_.size(); ++i) words_[i] &= ~other.words_[i];
}

bool PixelBits::meets(const PixelBits& other) const {
  for (std::size_t i = 0; i < words_.size(); ++i) {
    if ((words_[i] & other.words_[i]) != 0) return true;
  }
  return false;
}

bool PixelBits::exceeds(const PixelBits& other) const {
  for (std::size_t i = 0; i < words_.size(); ++i) {
    if ((words_[i] & ~other.words_[i]) != 0) return true;
  }
  return false;
}

std::int64_t PixelBits::count() const {
  std::int64_t count = 0;
  for (const std::uint32_t word : words_) count += std::popcount(word);
  return count;
}

}  // namespace lm::check
