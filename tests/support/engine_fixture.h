// Engines set up by hand: sized without a first frame, with the planes that single operations read, so that a
// test can call one operation and check its effect.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include "engine/kamble.h"
#include "tests/support/by_name.h"
#include "tests/support/mask_art.h"

namespace lm::test {

// A zero-filled array of exactly `count` elements, aligned as the engine's planes are; released with free().
template <class T>
T* makePlane(std::size_t count, T value = T{}) {
  void* memory = nullptr;
  if (posix_memalign(&memory, 32, count * sizeof(T)) != 0) {
    throw std::bad_alloc();
  }
  T* plane = static_cast<T*>(memory);
  for (std::size_t i = 0; i < count; ++i) {
    plane[i] = value;
  }
  return plane;
}

// Replaces a plane by an exact-size copy of `values`.
template <class T>
void put(T*& plane, const std::vector<T>& values) {
  std::free(plane);
  plane = makePlane<T>(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    plane[i] = values[i];
  }
}

// Sized as the first frame sizes an engine; every pixel lies inside the usable region.
struct SizedEngine : kAMBLE {
  SizedEngine(int width, int height, int channels);

  // Adds what the first frame creates: black current and previous frames and differences of 0. prevFgMask is
  // 1, so that no pixel takes the unchanged-background shortcut.
  void addFrames();

  [[nodiscard]] std::size_t pixels() const { return static_cast<std::size_t>(numPixel); }
  [[nodiscard]] std::string drawn(const std::uint8_t* plane) const {
    return drawing(plane, pixels(), szImgX);
  }
};

// A sized engine of one pixel: the whole model can be written down in a line. All samples start as `sample`.
struct OnePixel : SizedEngine {
  OnePixel(const Bytes& pixel, const Bytes& sample);

  void setPixel(const Bytes& bytes);
  void setSlot(int slot, const Bytes& bytes);
  [[nodiscard]] Bytes slot(int index) const;  // the slot's bytes, as many as the frame has channels
};

// A buffer of the engine that a test removes so that an operation refuses to run.
struct NamedPlane {
  const char* name;
  void (*drop)(kAMBLE&);
};
inline void PrintTo(const NamedPlane& plane, std::ostream* out) { *out << plane.name; }

template <auto Member>
void dropPlane(kAMBLE& engine) {
  std::free(engine.*Member);
  engine.*Member = nullptr;
}

// fgLife is the only plane allocated with new[].
inline void dropLife(kAMBLE& engine) {
  delete[] engine.fgLife;
  engine.fgLife = nullptr;
}

}  // namespace lm::test
