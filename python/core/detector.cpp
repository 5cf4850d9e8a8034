#include "python/core/detector.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "lightmotion/lightmotion.h"
#include "python/core/plane.h"
#include "python/core/turn.h"
#include "python/core/types.h"

namespace lm::python {
namespace {

struct Detector {
  PyObject ob_base;
  lightmotion_detector* handle;  // null before it is created and after it is closed
  TurnLock lock;
  PlaneShape frame;
  PyObject* regions;  // a tuple of names, or null until it is needed
};

// Warnings and reasons; longer ones are cut.
using Message = std::array<char, 16384>;

Detector& of(PyObject* object) { return *reinterpret_cast<Detector*>(object); }

bool isOpen(const Detector& self) {
  if (self.handle != nullptr) return true;
  PyErr_SetString(types.closedError, "the detector is closed");
  return false;
}

// ---- life -------------------------------------------------------------------------------------------------

PyObject* construct(PyTypeObject* type, PyObject* /*arguments*/, PyObject* /*keywords*/) {
  const auto allocate = reinterpret_cast<allocfunc>(PyType_GetSlot(type, Py_tp_alloc));
  Ref object(allocate(type, 0));  // zeros
  if (!object) return nullptr;
  of(object.get()).lock.lock = PyThread_allocate_lock();
  if (of(object.get()).lock.lock == nullptr) return PyErr_NoMemory();
  return object.release();
}

void destroy(PyObject* object) {
  Detector& self = of(object);
  lightmotion_destroy(self.handle);
  Py_XDECREF(self.regions);
  if (self.lock.lock != nullptr) PyThread_free_lock(self.lock.lock);
  PyTypeObject* type = Py_TYPE(object);
  reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(object);
  Py_DECREF(type);
}

const char* nameOf(std::int32_t format) {
  static constexpr const char* names[] = {"", "grey", "bgr", "rgb", "bgrx", "rgbx", "i420", "nv12"};
  return format >= 0 && format < static_cast<std::int32_t>(std::size(names)) ? names[format] : "";
}

lightmotion_info infoOf(const Detector& self) {
  lightmotion_info info{};
  info.struct_size = sizeof info;
  lightmotion_get_info(self.handle, &info);
  return info;
}

PlaneShape shapeOf(const lightmotion_info& info) {
  const bool planes = info.format == LIGHTMOTION_FORMAT_I420 || info.format == LIGHTMOTION_FORMAT_NV12;
  PlaneShape shape{"frame", nameOf(info.format), info.width, info.height, info.bytes_per_pixel};
  if (planes) {
    shape.chromaWidth = info.width / 2 + info.width % 2;
    shape.chromaHeight = info.height / 2 + info.height % 2;
  }
  return shape;
}

PyDoc_STRVAR(createDoc,
             "_create($self, configuration, width, height, format, /)\n--\n\n"
             "Creates the detector; 0 stands for what the configuration says. Returns the warnings.");
PyObject* create(PyObject* object, PyObject* arguments) {
  const char* configuration = nullptr;
  int width = 0;
  int height = 0;
  int format = 0;
  if (PyArg_ParseTuple(arguments, "siii", &configuration, &width, &height, &format) == 0) return nullptr;
  Detector& self = of(object);
  const Turn turn(self.lock);
  if (!turn) return nullptr;
  if (self.handle != nullptr) {
    PyErr_SetString(types.error, "the detector is created already");
    return nullptr;
  }
  Message message;
  lightmotion_detector* handle = nullptr;
  Py_BEGIN_ALLOW_THREADS handle =
      lightmotion_create_for(configuration, width, height, format, message.data(), message.size());
  Py_END_ALLOW_THREADS if (handle == nullptr) {
    if (std::strcmp(message.data(), lightmotion_error_text(LIGHTMOTION_ERROR_MEMORY)) == 0)
      return PyErr_NoMemory();
    PyErr_SetString(types.configurationError, message.data());
    return nullptr;
  }
  self.handle = handle;
  self.frame = shapeOf(infoOf(self));
  return PyUnicode_FromString(message.data());
}

PyDoc_STRVAR(closeDoc,
             "close($self, /)\n--\n\n"
             "Frees what the detector owns. It cannot be used afterwards; closing it again does nothing.");
PyObject* close(PyObject* object, PyObject* /*none*/) {
  Detector& self = of(object);
  const Turn turn(self.lock);
  if (!turn) return nullptr;
  lightmotion_destroy(std::exchange(self.handle, nullptr));
  Py_RETURN_NONE;
}

PyDoc_STRVAR(changeDoc, "_change($self, changes, /)\n--\n\nChanges the configuration. Returns the warnings.");
PyObject* change(PyObject* object, PyObject* arguments) {
  const char* changes = nullptr;
  if (PyArg_ParseTuple(arguments, "s", &changes) == 0) return nullptr;
  Detector& self = of(object);
  const Turn turn(self.lock);
  if (!turn || !isOpen(self)) return nullptr;
  Message message;
  int outcome = 0;
  Py_BEGIN_ALLOW_THREADS outcome = lightmotion_change(self.handle, changes, message.data(), message.size());
  Py_END_ALLOW_THREADS if (outcome == LIGHTMOTION_ERROR_CONFIGURATION) {
    PyErr_SetString(types.configurationError, message.data());
    return nullptr;
  }
  if (outcome < 0) return raise(outcome);
  const Ref former(std::exchange(self.regions, nullptr));
  return PyUnicode_FromString(message.data());
}

PyDoc_STRVAR(resetDoc,
             "reset($self, /)\n--\n\n"
             "Forgets everything learned: the next frame is a first one, and has no boxes.");
PyObject* reset(PyObject* object, PyObject* /*none*/) {
  Detector& self = of(object);
  const Turn turn(self.lock);
  if (!turn || !isOpen(self)) return nullptr;
  lightmotion_reset(self.handle);
  Py_RETURN_NONE;
}

// ---- results ----------------------------------------------------------------------------------------------

// A borrowed reference, or null with an exception set.
PyObject* regionsOf(Detector& self) {
  if (self.regions != nullptr) return self.regions;
  const std::int32_t count = infoOf(self).region_count;
  Ref names(PyTuple_New(count));
  if (!names) return nullptr;
  for (std::int32_t i = 0; i < count; ++i) {
    PyObject* name = PyUnicode_FromString(lightmotion_region_name(self.handle, i));
    if (name == nullptr || PyTuple_SetItem(names.get(), i, name) != 0) return nullptr;
  }
  return self.regions = names.release();
}

// `type` called with the value that Py_BuildValue makes of `format`, a tuple.
template <typename... Values>
PyObject* make(PyObject* type, const char* format, Values... values) {
  const Ref arguments(Py_BuildValue(format, values...));
  return arguments ? PyObject_Call(type, arguments.get(), nullptr) : nullptr;
}

PyObject* boxOf(const lightmotion_box& box, PyObject* regions) {
  Ref names(PyTuple_New(box.region_count));
  Ref indices(PyTuple_New(box.region_count));
  if (!names || !indices) return nullptr;
  for (std::int32_t i = 0; i < box.region_count; ++i) {
    PyObject* name = PyTuple_GetItem(regions, box.regions[i]);
    PyObject* index = PyLong_FromLong(box.regions[i]);
    if (name == nullptr || index == nullptr) {
      Py_XDECREF(index);
      return nullptr;
    }
    Py_INCREF(name);
    PyTuple_SetItem(names.get(), i, name);
    PyTuple_SetItem(indices.get(), i, index);
  }
  return make(types.box, "(iiiiddddOO)", box.x, box.y, box.width, box.height, double{box.rel_x},
              double{box.rel_y}, double{box.rel_width}, double{box.rel_height}, names.get(), indices.get());
}

PyObject* listOf(const lightmotion_box* boxes, int count, Detector& self) {
  PyObject* regions = count > 0 ? regionsOf(self) : nullptr;
  if (count > 0 && regions == nullptr) return nullptr;
  Ref list(PyList_New(count));
  if (!list) return nullptr;
  for (int i = 0; i < count; ++i) {
    PyObject* box = boxOf(boxes[i], regions);
    if (box == nullptr || PyList_SetItem(list.get(), i, box) != 0) return nullptr;
  }
  return list.release();
}

// ---- frames -----------------------------------------------------------------------------------------------

bool takeBuffer(Buffer& buffer, PyObject* object, int flags, const char* name) {
  if (PyObject_CheckBuffer(object) != 0) return buffer.take(object, flags);
  const Ref type(PyType_GetName(Py_TYPE(object)));
  if (type) {
    PyErr_Format(PyExc_TypeError, "%s: %U, expected a numpy array or another object with the buffer protocol",
                 name, type.get());
  }
  return false;
}

// None: unknown.
bool millisecondsOf(PyObject* object, std::int64_t& milliseconds) {
  milliseconds = -1;
  if (object == nullptr || object == Py_None) return true;
  if (PyIndex_Check(object) != 0) {
    const Ref whole(PyNumber_Index(object));
    if (!whole) return false;
    milliseconds = PyLong_AsLongLong(whole.get());
    return PyErr_Occurred() == nullptr;
  }
  const double value = PyFloat_AsDouble(object);
  if (PyErr_Occurred() != nullptr) return false;
  constexpr double most = 9007199254740992.0;  // 2^53: every whole number up to here is exact
  if (!(std::fabs(value) <= most)) {
    PyErr_SetString(PyExc_ValueError, "milliseconds: the number is not finite or too large");
    return false;
  }
  milliseconds = std::llround(value);
  return true;
}

PyObject* process(PyObject* object, PyObject* arguments, PyObject* keywords) {
  static const char* const names[] = {"frame", "milliseconds", "stride", nullptr};
  PyObject* frame = nullptr;
  PyObject* when = nullptr;
  Py_ssize_t stride = 0;
  // The names are not changed, whatever the type says.
  if (PyArg_ParseTupleAndKeywords(arguments, keywords, "O|O$n", const_cast<char**>(names), &frame, &when,
                                  &stride) == 0) {
    return nullptr;
  }
  Detector& self = of(object);
  Buffer buffer;
  std::int64_t milliseconds = 0;
  if (!takeBuffer(buffer, frame, planeBuffer, "frame") || !millisecondsOf(when, milliseconds)) return nullptr;
  const Turn turn(self.lock);
  if (!turn || !isOpen(self)) return nullptr;
  Plane plane;
  if (!planeOf(buffer.view(), self.frame, stride, plane)) return nullptr;
  const lightmotion_box* boxes = nullptr;
  int count = 0;
  Py_BEGIN_ALLOW_THREADS count =
      lightmotion_process(self.handle, plane.pixels, plane.stride, milliseconds, &boxes);
  Py_END_ALLOW_THREADS return count < 0 ? raise(count) : listOf(boxes, count, self);
}

PyDoc_STRVAR(jsonDoc,
             "json($self, /)\n--\n\n"
             "The boxes of the last frame as the result document of the plug-in, or '' when there are none.");
PyObject* json(PyObject* object, PyObject* /*none*/) {
  Detector& self = of(object);
  const Turn turn(self.lock);
  if (!turn || !isOpen(self)) return nullptr;
  std::size_t length = 0;
  const char* text = lightmotion_json(self.handle, &length);
  if (text == nullptr) return PyErr_NoMemory();
  return PyUnicode_FromStringAndSize(text, static_cast<Py_ssize_t>(length));
}

template <typename Copy>
PyObject* copied(PyObject* object, PyObject* out, bool mask, const Copy& copy) {
  Detector& self = of(object);
  Buffer buffer;
  if (!takeBuffer(buffer, out, writablePlaneBuffer, "out")) return nullptr;
  const Turn turn(self.lock);
  if (!turn || !isOpen(self)) return nullptr;
  PlaneShape shape = self.frame;
  shape.name = "out";
  shape.chromaWidth = shape.chromaHeight = 0;
  if (mask) {
    shape.format = "grey";
    shape.channels = 1;
  }
  Plane plane;
  if (!planeOf(buffer.view(), shape, 0, plane)) return nullptr;
  int outcome = 0;
  Py_BEGIN_ALLOW_THREADS outcome = copy(self.handle, plane.pixels, plane.stride);
  Py_END_ALLOW_THREADS if (outcome < 0) return raise(outcome);
  Py_RETURN_NONE;
}

PyDoc_STRVAR(foregroundDoc, "_foreground($self, out, /)\n--\n\nCopies the foreground into a buffer.");
PyObject* foreground(PyObject* object, PyObject* out) {
  return copied(object, out, true, lightmotion_foreground);
}

PyDoc_STRVAR(backgroundDoc, "_background($self, out, /)\n--\n\nCopies the background into a buffer.");
PyObject* background(PyObject* object, PyObject* out) {
  return copied(object, out, false, lightmotion_background);
}

bool isWithin(const PlaneShape& frame, int x, int y, int width, int height) {
  if (x >= 0 && y >= 0 && width >= 1 && height >= 1 && width <= frame.width - x && height <= frame.height - y)
    return true;
  PyErr_Format(PyExc_ValueError, "%d x %d pixels at (%d, %d) do not lie within the frame of %d x %d", width,
               height, x, y, static_cast<int>(frame.width), static_cast<int>(frame.height));
  return false;
}

PyDoc_STRVAR(relearnDoc,
             "_relearn($self, x, y, width, height, mask, /)\n--\n\nLearns a part of the frame anew.");
PyObject* relearn(PyObject* object, PyObject* arguments) {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  PyObject* mask = nullptr;
  if (PyArg_ParseTuple(arguments, "iiiiO", &x, &y, &width, &height, &mask) == 0) return nullptr;
  Detector& self = of(object);
  Buffer buffer;
  if (mask != Py_None && !takeBuffer(buffer, mask, planeBuffer, "mask")) return nullptr;
  const Turn turn(self.lock);
  if (!turn || !isOpen(self) || !isWithin(self.frame, x, y, width, height)) return nullptr;
  Plane plane;
  if (mask != Py_None && !planeOf(buffer.view(), {"mask", "grey", width, height, 1}, 0, plane))
    return nullptr;
  int outcome = 0;
  Py_BEGIN_ALLOW_THREADS outcome =
      lightmotion_relearn(self.handle, x, y, width, height, plane.pixels, plane.stride);
  Py_END_ALLOW_THREADS if (outcome < 0) return raise(outcome);
  Py_RETURN_NONE;
}

// ---- what is known ----------------------------------------------------------------------------------------

PyObject* getInfo(PyObject* object, void* /*closure*/) {
  Detector& self = of(object);
  const Turn turn(self.lock);
  if (!turn || !isOpen(self)) return nullptr;
  PyObject* regions = regionsOf(self);
  if (regions == nullptr) return nullptr;
  const lightmotion_info info = infoOf(self);
  return make(types.info, "(iisiOdLdK)", info.width, info.height, nameOf(info.format), info.bytes_per_pixel,
              regions, double{info.watched}, static_cast<long long>(info.frames), info.frame_rate,
              static_cast<unsigned long long>(info.memory));
}

PyObject* getClosed(PyObject* object, void* /*closure*/) {
  return PyBool_FromLong(of(object).handle == nullptr ? 1 : 0);
}

// ---- the class --------------------------------------------------------------------------------------------

PyMethodDef methods[] = {{"_create", create, METH_VARARGS, createDoc},
                         {"_change", change, METH_VARARGS, changeDoc},
                         {"_foreground", foreground, METH_O, foregroundDoc},
                         {"_background", background, METH_O, backgroundDoc},
                         {"close", close, METH_NOARGS, closeDoc},
                         {"reset", reset, METH_NOARGS, resetDoc},
                         {"_relearn", relearn, METH_VARARGS, relearnDoc},
                         {"json", json, METH_NOARGS, jsonDoc},
                         {nullptr, nullptr, 0, nullptr}};

PyGetSetDef members[] = {
    {"info", getInfo, nullptr, "What is known of the detector (Info).", nullptr},
    {"closed", getClosed, nullptr, "Whether close() was called, or the detector was never created.", nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr}};

char typeDoc[] = "One detector of the C interface. Use lightmotion.Detector.";

}  // namespace

PyObject* makeDetectorType() {
  PyType_Slot slots[] = {{Py_tp_new, reinterpret_cast<void*>(construct)},
                         {Py_tp_dealloc, reinterpret_cast<void*>(destroy)},
                         {Py_tp_call, reinterpret_cast<void*>(process)},
                         {Py_tp_methods, methods},
                         {Py_tp_getset, members},
                         {Py_tp_doc, typeDoc},
                         {0, nullptr}};
  PyType_Spec spec = {"lightmotion._core.Detector", sizeof(Detector), 0,
                      Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
  return PyType_FromSpec(&spec);
}

}  // namespace lm::python
