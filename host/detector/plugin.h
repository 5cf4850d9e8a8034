// A plug-in, loaded at run time and driven by its four entry points.
#pragma once

#include <memory>
#include <string>

#include "plugin/entry_points.h"

namespace lm::host::detector {

class Plugin {
 public:
  // Throws Failure (kRefused) if the file cannot be loaded or lacks an entry point.
  explicit Plugin(const std::string& path);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  // Starts the detector as in a fresh process. Returns the plug-in's own message if it refuses the document;
  // empty if it accepts.
  std::string start(const std::string& document);

  // Resets the detector's state. `document`: the one it was started with. Throws Failure if the plug-in now
  // refuses it.
  void restart(const std::string& document);

  // Processes one frame: packed pixels of the size stated in the document. Returns the plug-in's result
  // document, empty without motion. Throws Failure if the plug-in throws.
  std::string process(const unsigned char* pixels, const std::string& timestamp);

 private:
  struct Close {
    void operator()(void* library) const;
  };
  template <typename Function>
  void find(Function*& entry, const char* name);

  std::string path_;
  std::unique_ptr<void, Close> library_;
  bool first_frame_ = true;  // since the start
  decltype(&::initialization) initialization_ = nullptr;
  decltype(&::frameProc) frame_proc_ = nullptr;
  decltype(&::getRes) get_res_ = nullptr;
  decltype(&::terminate) terminate_ = nullptr;
};

}  // namespace lm::host::detector
