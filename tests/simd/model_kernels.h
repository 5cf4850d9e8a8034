// What the tests of the model's kernels share: a random generator and planes between guard pages.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "tests/simd/sweep.h"

// A generator with a fixed sequence.
class Random {
 public:
  std::uint32_t next() {
    state_ = state_ * 1664525U + 1013904223U;
    return state_ >> 8;
  }
  template <typename T>
  T oneOf(const std::vector<T>& values) {
    return values[next() % values.size()];
  }
  std::uint8_t byteOf(const std::vector<std::uint8_t>& values) { return oneOf(values); }
  std::uint8_t byte() { return static_cast<std::uint8_t>(next()); }
  std::uint32_t bits() { return next() << 8 ^ next(); }
  bool rarely() { return next() % 29 == 0; }

 private:
  std::uint32_t state_ = 12345;
};

// A plane of `count` elements that ends before, or begins after, an inaccessible page.
template <typename T>
class Plane {
 public:
  using Against = GuardedBuffer::Against;

  Plane(std::size_t count, Against page) : buffer_(count * sizeof(T) + 64), count_(count) {
    buffer_.place(count * sizeof(T), page == Against::front ? 0 : (32 - count * sizeof(T) % 32) % 32, page);
  }
  T* data() const { return reinterpret_cast<T*>(buffer_.begin()); }
  T& operator[](std::size_t i) const { return data()[i]; }
  std::vector<T> values() const { return {data(), data() + count_}; }
  std::string damage() const { return buffer_.damage(); }

 private:
  GuardedBuffer buffer_;
  std::size_t count_;
};

// The inaccessible page that a plane of `count` elements touches; the counts used give both.
inline GuardedBuffer::Against sideFor(std::size_t count) {
  return count % 2 == 0 ? GuardedBuffer::Against::front : GuardedBuffer::Against::back;
}

// Counts around multiples of the block of 32 pixels.
inline constexpr std::size_t modelCounts[] = {0, 1, 7, 31, 32, 33, 63, 64, 65, 100, 257};
inline constexpr std::int32_t modelThresholds[] = {INT_MIN, -1, 0, 1, 10, 254, 255, INT_MAX};

// Planes of a scene, mostly idle, so that blocks with and without work occur.
struct ModelScene {
  ModelScene(std::size_t count, Random& random)
      : roi(count, sideFor(count)),
        difference(count, sideFor(count)),
        before(count, sideFor(count)),
        now(count, sideFor(count)),
        absorbed(count, sideFor(count)),
        light(count, sideFor(count)),
        life(count, sideFor(count)),
        timer(count, sideFor(count)) {
    const bool outside = random.next() % 5 == 0;  // the whole scene
    for (std::size_t i = 0; i < count; ++i) {
      roi[i] = outside || random.rarely() ? 0 : random.byteOf({1, 1, 255});
      difference[i] = random.rarely() ? random.byteOf({1, 2, 10, 11, 20, 21, 30, 31, 254, 255}) : 0;
      before[i] = random.rarely() ? random.byteOf({1, 255}) : 0;
      now[i] = random.rarely() ? random.byteOf({7, 255}) : 0;
      absorbed[i] = random.rarely() ? random.byteOf({1, 254, 255}) : 0;
      light[i] = random.rarely() ? random.byteOf({1, 2, 10, 11, 254, 255}) : 0;
      life[i] = random.rarely() ? random.oneOf<float>({1.0F, 1.5F, 76.0F, 160.0F, 160.5F, 1e9F}) : 0.99F;
      timer[i] = random.rarely() ? INT_MIN : static_cast<std::int32_t>(random.next() % 5) - 2;
    }
  }

  Plane<std::uint8_t> roi, difference, before, now, absorbed, light;
  Plane<float> life;
  Plane<std::int32_t> timer;
};
