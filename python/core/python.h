// Python's C interface, the part that is the same in Python 3.11 and all later versions.
#pragma once

#define PY_SSIZE_T_CLEAN
#define Py_LIMITED_API 0x030B0000
#include <Python.h>

#include <utility>

namespace lm::python {

// An owned reference, or none.
class Ref {
 public:
  explicit Ref(PyObject* owned = nullptr) : object_(owned) {}
  Ref(Ref&& other) noexcept : object_(other.release()) {}
  Ref& operator=(Ref&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  ~Ref() { Py_XDECREF(object_); }

  explicit operator bool() const { return object_ != nullptr; }
  PyObject* get() const { return object_; }
  PyObject* release() { return std::exchange(object_, nullptr); }

 private:
  PyObject* object_;
};

// A buffer that is returned to its owner.
class Buffer {
 public:
  Buffer() = default;
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() {
    if (view_.obj != nullptr) PyBuffer_Release(&view_);
  }

  // False with an exception set.
  bool take(PyObject* object, int flags) { return PyObject_GetBuffer(object, &view_, flags) == 0; }
  const Py_buffer& view() const { return view_; }

 private:
  Py_buffer view_{};
};

}  // namespace lm::python
