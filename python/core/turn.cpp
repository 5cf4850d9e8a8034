#include "python/core/turn.h"

namespace lm::python {

Turn::Turn(TurnLock& lock) : lock_(lock) {
  const unsigned long self = PyThread_get_thread_ident();
  if (lock_.owner == self) {
    PyErr_SetString(PyExc_RuntimeError, "the detector is in use by this thread");
    return;
  }
  if (PyThread_acquire_lock(lock_.lock, NOWAIT_LOCK) == 0) {
    Py_BEGIN_ALLOW_THREADS PyThread_acquire_lock(lock_.lock, WAIT_LOCK);
    Py_END_ALLOW_THREADS
  }
  lock_.owner = self;
  mine_ = true;
}

Turn::~Turn() {
  if (!mine_) return;
  lock_.owner = 0;
  PyThread_release_lock(lock_.lock);
}

}  // namespace lm::python
