#include "python/core/plane.h"

#include <cstring>
#include <string>

#include "python/core/types.h"

namespace lm::python {
namespace {

bool refuse(const PlaneShape& shape, const std::string& text) {
  PyErr_SetString(types.frameError, (std::string(shape.name) + ": " + text).c_str());
  return false;
}

std::string number(Py_ssize_t value) { return std::to_string(value); }

std::string listOf(const Py_ssize_t* numbers, int count) {
  std::string text = "(";
  for (int i = 0; i < count; ++i) text += (i > 0 ? ", " : "") + number(numbers[i]);
  return text + (count == 1 ? ",)" : ")");
}

bool holdsBytes(const Py_buffer& view) {
  if (view.itemsize != 1) return false;
  if (view.format == nullptr) return true;
  const char* type = view.format;
  if (std::strchr("@=<>!", *type) != nullptr && *type != '\0') ++type;
  return std::strcmp(type, "B") == 0 || std::strcmp(type, "c") == 0;
}

Py_ssize_t rowBytes(const PlaneShape& shape) { return Py_ssize_t{shape.width} * shape.channels; }

// Rows of a frame with chroma planes below the luma plane, as arrays with two dimensions have it.
Py_ssize_t rowsWithChroma(const PlaneShape& shape) { return Py_ssize_t{shape.height} + shape.chromaHeight; }

Py_ssize_t bytesWithChroma(const PlaneShape& shape) {
  return rowBytes(shape) * shape.height + 2 * Py_ssize_t{shape.chromaWidth} * shape.chromaHeight;
}

// Bytes from one element to the next. Some exporters, such as ctypes, give none for arrays without gaps.
Py_ssize_t step(const Py_buffer& view, int dimension) {
  if (view.strides != nullptr) return view.strides[dimension];
  Py_ssize_t bytes = view.itemsize;
  for (int i = dimension + 1; i < view.ndim; ++i) bytes *= view.shape[i];
  return bytes;
}

// ---- one dimension: bytes ---------------------------------------------------------------------------------

bool planeOfBytes(const Py_buffer& view, const PlaneShape& shape, Py_ssize_t stride, Plane& plane) {
  const Py_ssize_t row = rowBytes(shape);
  const std::string size = number(shape.width) + " x " + number(shape.height) + " pixels of " +
                           number(shape.channels) + (shape.channels == 1 ? " byte" : " bytes");
  if (view.shape[0] > 1 && step(view, 0) != 1) {
    return refuse(shape, "bytes are " + number(step(view, 0)) + " apart, expected 1");
  }
  if (stride == 0) {
    const bool fits = view.len == row * shape.height || view.len == bytesWithChroma(shape);
    if (!fits) {
      return refuse(shape,
                    number(view.len) + " bytes, expected " + number(row * shape.height) + " (" + size + ")");
    }
  } else if (stride < row) {
    return refuse(shape, "stride " + number(stride) + ", expected at least " + number(row));
  } else if (view.len < row || (view.len - row) / stride < shape.height - 1) {
    return refuse(shape,
                  number(view.len) + " bytes are too few for " + size + " with stride " + number(stride));
  }
  plane = {view.buf, static_cast<std::size_t>(stride)};
  return true;
}

// ---- two or three dimensions: an array --------------------------------------------------------------------

std::string expectedShape(const PlaneShape& shape) {
  const Py_ssize_t sides[] = {shape.height, shape.width, shape.channels};
  std::string text = listOf(sides, shape.channels == 1 ? 2 : 3);
  if (shape.chromaHeight > 0) {
    const Py_ssize_t all[] = {rowsWithChroma(shape), shape.width};
    text += " or " + listOf(all, 2);
  }
  return text + " for format \"" + shape.format + "\"";
}

bool hasShape(const Py_buffer& view, const PlaneShape& shape) {
  const bool flat = view.ndim == 2;
  if (flat ? shape.channels != 1 : view.ndim != 3 || view.shape[2] != shape.channels) return false;
  if (view.shape[1] != shape.width) return false;
  return view.shape[0] == shape.height || (flat && view.shape[0] == rowsWithChroma(shape));
}

bool planeOfArray(const Py_buffer& view, const PlaneShape& shape, Plane& plane) {
  if (!hasShape(view, shape)) {
    return refuse(shape, "shape " + listOf(view.shape, view.ndim) + ", expected " + expectedShape(shape));
  }
  const std::string copy = "; numpy.ascontiguousarray makes a copy that fits";
  // The step along a side of length 1 means nothing.
  if (view.ndim == 3 && shape.channels > 1 && step(view, 2) != 1) {
    return refuse(shape, "channels are " + number(step(view, 2)) + " bytes apart, expected 1" + copy);
  }
  if (shape.width > 1 && step(view, 1) != shape.channels) {
    return refuse(shape, "pixels are " + number(step(view, 1)) + " bytes apart, expected " +
                             number(shape.channels) + copy);
  }
  if (view.shape[0] > 1 && step(view, 0) < rowBytes(shape)) {
    return refuse(shape, "rows are " + number(step(view, 0)) + " bytes apart, expected at least " +
                             number(rowBytes(shape)) + copy);
  }
  plane = {view.buf, shape.height > 1 ? static_cast<std::size_t>(step(view, 0)) : 0};
  return true;
}

}  // namespace

bool planeOf(const Py_buffer& view, const PlaneShape& shape, Py_ssize_t stride, Plane& plane) {
  if (!holdsBytes(view)) {
    return refuse(shape, "elements are of type \"" + std::string(view.format == nullptr ? "?" : view.format) +
                             "\" with " + number(view.itemsize) + " bytes, expected unsigned bytes (uint8)");
  }
  if (view.ndim == 1) return planeOfBytes(view, shape, stride, plane);
  if (stride != 0) return refuse(shape, "a stride is for buffers with one dimension; arrays have their own");
  return planeOfArray(view, shape, plane);
}

}  // namespace lm::python
