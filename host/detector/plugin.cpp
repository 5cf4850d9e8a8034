#include "host/detector/plugin.h"

#include <dlfcn.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <vector>

#include "host/base/failure.h"
#include "host/base/standard_streams.h"

namespace lm::host::detector {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileName = "liblightmotion.so.1";

// Runs `call` and returns the text of the exception thrown; empty if none.
template <typename Call>
std::string thrown_by(Call call) {
  try {
    call();
    return "";
  } catch (const std::exception& error) {
    return std::string("exception \"") + error.what() + "\"";
  } catch (...) {
    return "an unknown exception";
  }
}

}  // namespace

std::string find_plugin(const std::string& given, const std::string& program_folder) {
  if (!given.empty()) return given;
  const fs::path beside = program_folder;
  const fs::path lib = beside.parent_path() / "lib";
  std::string searched;
  for (const fs::path& folder : {beside, lib, lib / LIGHTMOTION_MULTIARCH}) {
    std::error_code missing;
    if (fs::exists(folder / kFileName, missing)) return (folder / kFileName).string();
    searched += (searched.empty() ? "" : ", ") + folder.string();
  }
  throw base::Failure(base::kRefused,
                      std::string(kFileName) + " not found in " + searched + "; give its path with --plugin");
}

std::string program_folder() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path().string();
}

void Plugin::Close::operator()(void* library) const { dlclose(library); }

template <typename Function>
void Plugin::find(Function*& entry, const char* name) {
  entry = reinterpret_cast<Function*>(dlsym(library_.get(), name));
  if (entry == nullptr)
    throw base::Failure(base::kRefused, path_ + ": not a lightmotion plug-in: it has no function " + name);
}

Plugin::Plugin(const std::string& path) : path_(path) {
  // For a name without a slash dlopen would search the system's library folders.
  std::error_code error;
  library_.reset(dlopen(fs::absolute(path, error).c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!library_) throw base::Failure(base::kRefused, std::string("cannot load the plug-in: ") + dlerror());
  find(initialization_, "initialization");
  find(frame_proc_, "frameProc");
  find(get_res_, "getRes");
  find(terminate_, "terminate");
}

Plugin::~Plugin() {
  if (terminate_ != nullptr) terminate_();
}

std::string Plugin::start(const std::string& document) {
  base::CapturedStream chatter(stdout);  // standard output is for results
  bool started = false;
  std::string thrown = thrown_by([&] { started = initialization_(document.c_str()); });
  if (started) return "";
  if (!thrown.empty()) return thrown;
  const std::string printed = chatter.text();
  return printed.empty() ? "no reason given" : printed;
}

void Plugin::restart(const std::string& document) {
  terminate_();
  const std::string refusal = start(document);
  if (!refusal.empty()) throw base::Failure(base::kTrouble, path_ + ": cannot be restarted: " + refusal);
}

std::string Plugin::process(const unsigned char* pixels, const std::string& timestamp) {
  std::vector<char> text(1);
  const std::string cause = thrown_by([&] {
    int length = 0;
    frame_proc_(pixels, timestamp.c_str(), &length);
    if (length <= 0) return;
    text.resize(static_cast<std::size_t>(length) + 1);
    get_res_(text.data());
  });
  if (!cause.empty()) throw base::Failure(base::kTrouble, path_ + ": " + cause + " while processing a frame");
  text.back() = '\0';
  return text.data();
}

}  // namespace lm::host::detector
