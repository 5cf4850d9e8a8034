// One detector is used by one thread at a time: further threads wait, without the interpreter lock.
#pragma once

#include "python/core/python.h"

namespace lm::python {

// All members are used with the interpreter lock held.
struct TurnLock {
  PyThread_type_lock lock = nullptr;
  unsigned long owner = 0;  // the thread in turn, or 0
};

// From its construction to its destruction, unless it is refused, this thread's turn.
class Turn {
 public:
  explicit Turn(TurnLock& lock);
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn();

  // False with an exception set when the thread is in turn already: a destructor or a signal handler that
  // runs while results are built would wait for ever.
  explicit operator bool() const { return mine_; }

 private:
  TurnLock& lock_;
  bool mine_ = false;
};

}  // namespace lm::python
