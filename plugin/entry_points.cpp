#include "plugin/entry_points.h"

#include <memory>
#include <new>

#include "plugin/detector.h"
#include "plugin/instance.h"

namespace {

// The one detector of the process. Only terminate() destroys it, not unloading the library.
CInstance* instance = nullptr;

lightMotion* currentDetector() { return instance == nullptr ? nullptr : instance->detector; }

}  // namespace

CInstance::CInstance() = default;

CInstance::~CInstance() {
  if (detector == nullptr) return;
  detector->terminate();
  delete detector;
}

bool initialization(const char* config) {
  if (instance != nullptr) return false;
  // Destroys everything when init refuses the document or throws.
  std::unique_ptr<CInstance> holder(new (std::nothrow) CInstance);
  if (holder == nullptr) return false;
  holder->detector = new (std::nothrow) lightMotion;
  if (holder->detector == nullptr || !holder->detector->init(config)) return false;
  instance = holder.release();
  return true;
}

int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  lightMotion* detector = currentDetector();
  return detector == nullptr ? 0 : detector->frameProc(frame, timestamp, resultLen);
}

int getRes(char* out) {
  lightMotion* detector = currentDetector();
  return detector == nullptr ? 0 : detector->getRes(out);
}

int terminate() {
  delete instance;
  instance = nullptr;
  return 1;
}
