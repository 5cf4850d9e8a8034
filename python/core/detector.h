// The class lightmotion._core.Detector.
#pragma once

#include "python/core/python.h"

namespace lm::python {

// A new reference, or null with an exception set.
PyObject* makeDetectorType();

}  // namespace lm::python
