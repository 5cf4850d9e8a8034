#include "host/detector/plugin.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "host/base/failure.h"
#include "host/base/notice.h"
#include "host/base/standard_streams.h"

namespace lm::host::detector {
namespace {

namespace fs = std::filesystem;

// The program is linked with a library that has the same names, which come first in the search otherwise. The
// address sanitizer refuses the flag.
#ifdef __SANITIZE_ADDRESS__
constexpr int kOwnNames = 0;
#else
constexpr int kOwnNames = RTLD_DEEPBIND;
#endif

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
  library_.reset(dlopen(fs::absolute(path, error).c_str(), RTLD_NOW | RTLD_LOCAL | kOwnNames));
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
  std::srand(1);                         // the plug-in draws from the process's sequence
  first_frame_ = true;
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
  // It prints its buffers' sizes on the first frame, which only its developers need.
  std::optional<base::CapturedStream> chatter;
  if (std::exchange(first_frame_, false) && !base::shows_plugin_log()) chatter.emplace(stderr);
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
