// The plug-in, of this build or an earlier one, called as by a host: frameProc, then getRes if there is a
// result.
#include <dlfcn.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "bench/peers/peer.h"
#include "plugin/entry_points.h"

namespace lm::bench {
namespace {

namespace fs = std::filesystem;

struct Close {
  void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Close>;

// A library supports one detector per process. Loading separate copies allows several.
Library load_copy(const std::string& path) {
  static int number = 0;
  const fs::path copy = fs::temp_directory_path() /
                        ("bench_" + std::to_string(getpid()) + "_" + std::to_string(number++) + ".so");
  fs::copy_file(path, copy, fs::copy_options::overwrite_existing);
  Library library(dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL));
  fs::remove(copy);
  if (!library) throw std::runtime_error(dlerror());
  return library;
}

class PluginPeer : public Peer {
 public:
  PluginPeer(const std::string& path, const std::string& document) : library_(load_copy(path)) {
    find(start_, "initialization");
    find(process_, "frameProc");
    find(result_, "getRes");
    find(end_, "terminate");
    if (!start_(document.c_str())) throw std::runtime_error(path + " refuses " + document);
  }
  ~PluginPeer() override { end_(); }
  PluginPeer(const PluginPeer&) = delete;
  PluginPeer& operator=(const PluginPeer&) = delete;

  void find_mask(const cv::Mat& frame, const std::string& time) override {
    // Neighbour tables use rand(): the same sequence for every library.
    if (first_) std::srand(1);
    first_ = false;
    process_(frame.data, time.c_str(), &length_);
    if (length_ <= 0) return;
    text_.resize(static_cast<std::size_t>(length_) + 1);
    result_(text_.data());
  }
  std::string document() const override { return length_ > 0 ? text_.c_str() : ""; }

 private:
  template <typename Function>
  void find(Function*& entry, const char* name) {
    entry = reinterpret_cast<Function*>(dlsym(library_.get(), name));
    if (entry == nullptr) throw std::runtime_error(std::string("no ") + name + " in the plug-in");
  }

  Library library_;
  decltype(&::initialization) start_ = nullptr;
  decltype(&::frameProc) process_ = nullptr;
  decltype(&::getRes) result_ = nullptr;
  decltype(&::terminate) end_ = nullptr;
  bool first_ = true;
  int length_ = 0;
  std::string text_;
};

std::string point(double x, double y) {
  return R"({"x":")" + std::to_string(x) + R"(","y":")" + std::to_string(y) + "\"}";
}

}  // namespace

std::string document_for(cv::Size frame, double share, int channels) {
  const double side = std::sqrt(share);
  // The whole frame needs a region larger than the frame, because a region's left edge is outside it.
  const double low = share < 1 ? (1 - side) / 2 : -1;
  const double high = share < 1 ? (1 + side) / 2 : 2;
  return R"({"frmW":")" + std::to_string(frame.width) + R"(","frmH":")" + std::to_string(frame.height) +
         R"(","frmChn":")" + std::to_string(channels) +
         R"(","sensitivity":"3","roi":[{"name":"region","points":[)" + point(low, low) + "," +
         point(high, low) + "," + point(high, high) + "," + point(low, high) + "]}]}";
}

std::unique_ptr<Peer> make_plugin(const std::string& library, const std::string& document) {
  return std::make_unique<PluginPeer>(library, document);
}

}  // namespace lm::bench
