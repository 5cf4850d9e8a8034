#include "compact/memory.h"

#include <cstdlib>
#include <limits>

#include "base/aligned.h"

namespace lm::compact {
namespace {

constexpr std::size_t cacheLine = 64;
constexpr std::size_t mostPerPixel = 100;  // bytes, of all planes or of a border pixel

// Hands out consecutive parts of an allocation, each on a cache line of its own; adds up their sizes first.
class Parts {
 public:
  explicit Parts(std::uintptr_t begin) : next_((begin + cacheLine - 1) / cacheLine * cacheLine) {}

  template <typename T>
  void take(T*& part, std::size_t count) {
    part = reinterpret_cast<T*>(next_);  // NOLINT(performance-no-int-to-ptr)
    next_ += (count * sizeof(T) + cacheLine - 1) / cacheLine * cacheLine;
  }

  std::size_t bytes() const { return next_; }

 private:
  std::uintptr_t next_;
};

}  // namespace

bool Memory::make(const Shape& shape) {
  blocks_ = shape.blocks();
  planes_ = shape.planes();
  const std::size_t words = blocks_ * static_cast<std::size_t>(shape.height);
  // Sizes below do not wrap where they have 32 bits.
  if (words > std::numeric_limits<std::size_t>::max() / (blockPixels * mostPerPixel)) return false;
  const std::size_t pixels = words * blockPixels;
  const auto layOut = [&](Parts& parts) {
    parts.take(previous_, pixels);
    for (std::size_t channel = 0; channel < planes_; ++channel) parts.take(background_[channel], pixels);
    parts.take(region_, words);
    parts.take(foreground_, words);
    parts.take(alive_, words);
    parts.take(resting_, words);
    parts.take(neighbour_, pixels);
    parts.take(slot_, pixels);
    parts.take(turn_, pixels);
    parts.take(life_, pixels);
    // And one block, for the prefetch of the next one.
    parts.take(samples_, (words + 1) * sampleBytes(planes_));
  };
  Parts sizes(0);
  layOut(sizes);
  memory_.reset();
  memory_.reset(std::calloc(1, sizes.bytes() + cacheLine));
  if (memory_ == nullptr) return false;
  bytes_ = sizes.bytes() + cacheLine;
  adviseLarge(memory_.get(), sizes.bytes());
  Parts places(reinterpret_cast<std::uintptr_t>(memory_.get()));
  layOut(places);
  return true;
}

RowPlanes Memory::row(std::int32_t y) const {
  const std::size_t words = wordsBefore(y);
  const std::size_t pixels = words * blockPixels;
  RowPlanes row{.background = {},
                .previous = previous_ + pixels,
                .samples = samples_ + words * sampleBytes(planes_),
                .slot = slot_ + pixels,
                .neighbour = neighbour_ + pixels,
                .turn = turn_ + pixels,
                .resting = resting_ + words,
                .life = life_ + pixels,
                .region = region_ + words,
                .foreground = foreground_ + words,
                .alive = alive_ + words};
  for (std::size_t channel = 0; channel < planes_; ++channel) {
    row.background[channel] = background_[channel] + pixels;
  }
  return row;
}

void RecentRows::make(std::size_t blocks) {
  blocks_ = blocks;
  differences_.assign(kept * blocks * blockPixels, 0);
  changed_.assign(kept * blocks, 0);
  lit_.assign(kept * blocks, 0);
}

RowChanges RecentRows::of(std::int32_t y) {
  const std::size_t words = place(y) * blocks_;
  return {differences_.data() + words * blockPixels, changed_.data() + words, lit_.data() + words};
}

}  // namespace lm::compact
