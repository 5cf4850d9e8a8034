// The holder behind the library's one global pointer.
#pragma once

class lightMotion;

// Owns the one detector of the process.
class CInstance {
 public:
  CInstance();
  ~CInstance();  // terminates and frees the detector, if there is one
  CInstance(const CInstance&) = delete;
  CInstance& operator=(const CInstance&) = delete;

  lightMotion* detector = nullptr;  // owned
};
