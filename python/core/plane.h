// From a Python buffer to the pixels and the stride that the C interface takes, without a copy.
#pragma once

#include <cstddef>
#include <cstdint>

#include "python/core/python.h"

namespace lm::python {

// What a buffer has to be.
struct PlaneShape {
  const char* name = "";  // of the argument, for messages
  const char* format = "";
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t channels = 0;     // bytes per pixel
  std::int32_t chromaWidth = 0;  // of the planes that may follow the luma plane, else 0
  std::int32_t chromaHeight = 0;
};

struct Plane {
  void* pixels = nullptr;
  std::size_t stride = 0;
};

inline constexpr int planeBuffer = PyBUF_RECORDS_RO;
inline constexpr int writablePlaneBuffer = PyBUF_RECORDS;

// `stride`: bytes per row of a buffer with one dimension, 0 for rows without padding.
// False with an exception set if the buffer is something else.
bool planeOf(const Py_buffer& view, const PlaneShape& shape, Py_ssize_t stride, Plane& plane);

}  // namespace lm::python
