// The motion detector, loaded at run time and known by its four entry points.
#pragma once

#include <memory>
#include <string>

#include "plugin/entry_points.h"

namespace lm::host::detector {

// `given`: the path asked for, which wins when it is not empty. Otherwise the plug-in is beside the program
// or in the lib folder of the place where the program is installed. Throws Failure (kRefused) naming the
// places searched.
std::string find_plugin(const std::string& given, const std::string& program_folder);

// The folder of the running program.
std::string program_folder();

class Plugin {
 public:
  // Throws Failure (kRefused) when the file cannot be loaded or lacks an entry point.
  explicit Plugin(const std::string& path);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  // Starts the detector. Returns why the plug-in refuses the document, in its own words; empty when it
  // accepts.
  std::string start(const std::string& document);

  // Has the detector forget what it saw. `document`: the one that it was started with. Throws Failure when
  // the plug-in refuses it now.
  void restart(const std::string& document);

  // Hands over one frame: packed pixels of the size that the document states. Returns the plug-in's result
  // document, empty when nothing moved. Throws Failure when the plug-in does.
  std::string process(const unsigned char* pixels, const std::string& timestamp);

 private:
  struct Close {
    void operator()(void* library) const;
  };
  template <typename Function>
  void find(Function*& entry, const char* name);

  std::string path_;
  std::unique_ptr<void, Close> library_;
  decltype(&::initialization) initialization_ = nullptr;
  decltype(&::frameProc) frame_proc_ = nullptr;
  decltype(&::getRes) get_res_ = nullptr;
  decltype(&::terminate) terminate_ = nullptr;
};

}  // namespace lm::host::detector
