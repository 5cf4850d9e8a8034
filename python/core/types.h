// The Python classes that results and errors become; they are defined in lightmotion/_types.py.
#pragma once

#include "python/core/python.h"

namespace lm::python {

struct Types {
  PyObject* box;
  PyObject* info;
  PyObject* error;
  PyObject* configurationError;
  PyObject* frameError;
  PyObject* noFrameError;
  PyObject* closedError;
  PyObject* internalError;
};

// Valid as soon as the module is imported.
extern Types types;

bool importTypes();

// Sets the exception for a negative result of the C interface; always null.
PyObject* raise(int error);

}  // namespace lm::python
