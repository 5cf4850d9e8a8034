#include "plugin/entry_points.h"

#include <memory>
#include <new>

#include "compact/engine.h"
#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/instance.h"

namespace {

// The holder of the detector, and the compact engine that learns frames in the place of the detector's own.
// The detector reads the configuration, keeps settings and counters, and writes the result.
class Instance : public CInstance {
 public:
  bool init(const char* config) {
    if (!detector->init(config)) return false;
    shape_ = {detector->frmW, detector->frmH, detector->frmChn};
    compact_ = lm::compact::Engine::suits(*detector->engine, shape_);
    return true;
  }

  int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
    if (!compact_) return detector->frameProc(frame, timestamp, resultLen);
    detector->resText.clear();
    *resultLen = 0;
    detector->engine->setTimestamp(timestamp);
    engine_.learn(*detector->engine, frame, shape_);
    detector->objList.clear();
    detector->objList = engine_.boxes(*detector->engine);
    if (!detector->objList.empty()) *resultLen = detector->genRes(timestamp);
    return 1;
  }

 private:
  lm::compact::Engine engine_;
  lm::compact::Shape shape_;
  bool compact_ = false;
};

// The one detector of the process. Only terminate() destroys it, not unloading the library.
Instance* instance = nullptr;

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
  std::unique_ptr<Instance> holder(new (std::nothrow) Instance);
  if (holder == nullptr) return false;
  holder->detector = new (std::nothrow) lightMotion;
  if (holder->detector == nullptr || !holder->init(config)) return false;
  instance = holder.release();
  return true;
}

int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  return instance == nullptr ? 0 : instance->frameProc(frame, timestamp, resultLen);
}

int getRes(char* out) { return instance == nullptr ? 0 : instance->detector->getRes(out); }

int terminate() {
  delete instance;
  instance = nullptr;
  return 1;
}
