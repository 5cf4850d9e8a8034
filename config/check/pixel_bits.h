// A set of pixels of a frame, one bit for each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lm::check {

// Rows of 32-bit words; bit x % 32 of word x / 32 is column x. The bits beyond a row are 0.
class PixelBits {
 public:
  PixelBits() = default;
  PixelBits(std::int32_t width, std::int32_t height);
  // `mask`: width x height bytes, 0 or not.
  PixelBits(const std::uint8_t* mask, std::int32_t width, std::int32_t height);

  bool operator==(const PixelBits&) const = default;

  bool empty() const { return words_.empty(); }  // of no frame
  std::size_t bytes() const { return words_.size() * sizeof(std::uint32_t); }
  std::size_t wordsPerRow() const { return perRow_; }
  const std::uint32_t* row(std::int32_t y) const {
    return words_.data() + static_cast<std::size_t>(y) * perRow_;
  }
  bool isSet(std::int32_t x, std::int32_t y) const { return (row(y)[x / 32] >> (x % 32) & 1) != 0; }

  void fill();
  void add(const PixelBits& other);
  void remove(const PixelBits& other);
  bool meets(const PixelBits& other) const;    // some pixel is in both
  bool exceeds(const PixelBits& other) const;  // some pixel is not in the other
  std::int64_t count() const;

 private:
  std::int32_t width_ = 0;
  std::size_t perRow_ = 0;
  std::vector<std::uint32_t> words_;
};

}  // namespace lm::check
