// The module lightmotion._core: the C interface as a Python class. What is convenient is Python, in
// lightmotion/.
#include "lightmotion/lightmotion.h"
#include "python/core/detector.h"
#include "python/core/python.h"
#include "python/core/types.h"

namespace {

PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                          "lightmotion._core",
                          "Detectors of lightmotion/lightmotion.h.",
                          -1,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

}  // namespace

PyMODINIT_FUNC PyInit__core() {  // NOLINT(bugprone-reserved-identifier): Python's name for the module _core
  using namespace lm::python;
  Ref module(PyModule_Create(&definition));
  if (!module || !importTypes()) return nullptr;
  const Ref detector(makeDetectorType());
  if (!detector || PyModule_AddObjectRef(module.get(), "Detector", detector.get()) != 0) return nullptr;
  if (PyModule_AddStringConstant(module.get(), "version", lightmotion_version_text()) != 0) return nullptr;
  return module.release();
}
