#include "python/core/types.h"

#include "lightmotion/lightmotion.h"

namespace lm::python {

Types types;

bool importTypes() {
  const Ref module(PyImport_ImportModule("lightmotion._types"));
  if (!module) return false;
  const auto get = [&](PyObject*& type, const char* name) {
    type = PyObject_GetAttrString(module.get(), name);
    return type != nullptr;
  };
  return get(types.box, "Box") && get(types.info, "Info") && get(types.error, "Error") &&
         get(types.configurationError, "ConfigurationError") && get(types.frameError, "FrameError") &&
         get(types.noFrameError, "NoFrameError") && get(types.closedError, "ClosedError") &&
         get(types.internalError, "InternalError");
}

PyObject* raise(int error) {
  const char* text = lightmotion_error_text(error);
  switch (error) {
    case LIGHTMOTION_ERROR_MEMORY:
      return PyErr_NoMemory();
    case LIGHTMOTION_ERROR_CONFIGURATION:
      PyErr_SetString(types.configurationError, text);
      break;
    case LIGHTMOTION_ERROR_NO_FRAME:
      PyErr_SetString(types.noFrameError, text);
      break;
    case LIGHTMOTION_ERROR_INTERNAL:
      PyErr_SetString(types.internalError, text);
      break;
    default:
      PyErr_SetString(types.error, text);
  }
  return nullptr;
}

}  // namespace lm::python
