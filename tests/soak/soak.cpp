// A host that runs for months, in minutes: many small frames through one detector, then many detectors one
// after another. Resident memory must not grow after a warm-up, and a scene at the end must give the results
// of a fresh process, with rand() reset to the state it has there.
//
// usage: soak LIBRARY [FRAMES ROUNDS]      without numbers: the scene's results alone
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "plugin/entry_points.h"

namespace {

struct Plugin {
  decltype(&::initialization) initialization;
  decltype(&::frameProc) frameProc;
  decltype(&::getRes) getRes;
  decltype(&::terminate) terminate;
};

Plugin load(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw std::runtime_error(dlerror());
  const auto find = [library](auto& entry, const char* name) {
    entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(dlsym(library, name));
    if (entry == nullptr) throw std::runtime_error(std::string("no ") + name);
  };
  Plugin plugin{};
  find(plugin.initialization, "initialization");
  find(plugin.frameProc, "frameProc");
  find(plugin.getRes, "getRes");
  find(plugin.terminate, "terminate");
  return plugin;
}

// ---- content

class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed) {}
  int below(int limit) {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<int>((state_ >> 8U) % static_cast<std::uint32_t>(limit));
  }

 private:
  std::uint32_t state_;
};

struct Size {
  int width, height, channels;
};

// Noise, walkers, objects that are placed and removed, lighting changes.
class Film {
 public:
  Film(const Size& size, std::uint32_t seed)
      : size_(size),
        random_(seed),
        pixels_(static_cast<std::size_t>(size.width * size.height * size.channels)) {}

  const std::vector<std::uint8_t>& next() {
    const int light = number_ / 500 % 3 * 15;
    for (std::uint8_t& value : pixels_) value = static_cast<std::uint8_t>(60 + light + random_.below(6));
    draw(number_ % (2 * size_.width) - size_.width / 4, size_.height / 4, 220);
    if (number_ / 300 % 2 == 1) draw(size_.width / 2, size_.height / 2, 20 + number_ / 600 % 8 * 25);
    ++number_;
    return pixels_;
  }

 private:
  void draw(int left, int top, int value) {
    const int right = std::min(left + size_.width / 4 + 1, size_.width);
    const int bottom = std::min(top + size_.height / 2 + 1, size_.height);
    for (int y = top; y < bottom; ++y) {
      for (int x = std::max(left, 0); x < right; ++x) {
        const auto pixel = static_cast<std::size_t>((y * size_.width + x) * size_.channels);
        std::fill_n(pixels_.begin() + static_cast<std::ptrdiff_t>(pixel), size_.channels,
                    static_cast<std::uint8_t>(value));
      }
    }
  }

  Size size_;
  Random random_;
  int number_ = 0;
  std::vector<std::uint8_t> pixels_;
};

std::string documentFor(const Size& size, const std::string& more = "") {
  return R"({"frmW":")" + std::to_string(size.width) + R"(","frmH":")" + std::to_string(size.height) +
         R"(","frmChn":")" + std::to_string(size.channels) + '"' + more +
         R"(,"roi":[{"name":"all","points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},{"x":"2","y":"2"},)" +
         R"({"x":"-1","y":"2"}]}],"ror":[{"name":"corner","points":[{"x":"0.8","y":"0.8"},{"x":"1","y":"0.8"},)" +
         R"({"x":"1","y":"1"}]}]})";
}

// Processes a frame; returns its result document, if any.
std::string feed(const Plugin& plugin, const std::vector<std::uint8_t>& frame, std::int64_t time) {
  int length = 0;
  plugin.frameProc(frame.data(), std::to_string(time).c_str(), &length);
  std::string text(static_cast<std::size_t>(length), '\0');
  if (length > 0) plugin.getRes(text.data());
  return text;
}

// ---- memory

long residentKiB() {
  long total = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// Resident memory at twenty points of a phase; the first quarter is the warm-up.
class Curve {
 public:
  Curve(std::FILE* out, const char* name, int steps) : out_(out), name_(name), steps_(steps) {}

  void step(int done) {
    if (done * numPoints / steps_ == (done - 1) * numPoints / steps_) return;
    points_.push_back(residentKiB());
    std::fprintf(out_, "%s %d: %ld KiB\n", name_, done, points_.back());
    std::fflush(out_);
  }

  // The increase of memory after the warm-up.
  long rise() const {
    const auto warm = points_.begin() + static_cast<std::ptrdiff_t>(points_.size() / 4);
    return warm == points_.end() ? 0 : *std::max_element(warm, points_.end()) - *warm;
  }

 private:
  static constexpr int numPoints = 20;
  std::FILE* out_;
  const char* name_;
  int steps_;
  std::vector<long> points_;
};

// ---- phases

void manyFrames(const Plugin& plugin, int frames, Curve& curve) {
  const Size size{40, 30, 3};
  Film film(size, 1);
  if (!plugin.initialization(documentFor(size, R"(,"sensitivity":"-1")").c_str()))
    throw std::runtime_error("refused");
  int withBoxes = 0;
  for (int i = 1; i <= frames; ++i) {
    if (!feed(plugin, film.next(), 40LL * i).empty()) ++withBoxes;
    curve.step(i);
  }
  plugin.terminate();
  if (withBoxes < frames / 4) throw std::runtime_error("hardly any motion was found");
}

// Occasional errors of a host.
void badStart(const Plugin& plugin, int kind) {
  try {
    plugin.initialization(kind % 3 == 0   ? "not JSON"
                          : kind % 3 == 1 ? documentFor({8, 8, 0}).c_str()
                                          : documentFor({8, 8, 3}, R"(,"minBoxW":"wide")").c_str());
  } catch (const std::exception&) {
  }
}

void manyRounds(const Plugin& plugin, int rounds, Curve& curve) {
  constexpr int channels[] = {1, 3, 4};
  Random random(7);
  for (int i = 1; i <= rounds; ++i) {
    const Size size{1 + random.below(96), 1 + random.below(72), channels[i % 3]};
    Film film(size, static_cast<std::uint32_t>(i));
    badStart(plugin, i);
    if (!plugin.initialization(documentFor(size).c_str())) throw std::runtime_error("refused");
    for (int frame = 1; frame <= 8; ++frame) feed(plugin, film.next(), 40LL * frame);
    plugin.terminate();
    curve.step(i);
  }
}

// Resets rand() to the state of a fresh process: detectors draw border neighbours from it, so without this a
// later detector can give slightly different boxes.
std::string scene(const Plugin& plugin) {
  std::srand(1);
  const Size size{64, 48, 3};
  Film film(size, 99);
  std::string results;
  if (!plugin.initialization(documentFor(size).c_str())) throw std::runtime_error("refused");
  for (int i = 1; i <= 200; ++i) results += feed(plugin, film.next(), 40LL * i);
  plugin.terminate();
  return results;
}

std::string fresh(const char* program, const char* library) {
  const std::string command =
      std::string("'").append(program).append("' '").append(library).append("' 2>/dev/null");
  std::FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char part[4096];
  while (const std::size_t length = std::fread(part, 1, sizeof part, pipe)) output.append(part, length);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

bool isFlat(std::FILE* out, const char* name, const Curve& curve) {
  constexpr long toleranceKiB = 1024;
  std::fprintf(out, "%s: memory rose by %ld KiB after the warm-up\n", name, curve.rise());
  return curve.rise() <= toleranceKiB;
}

int soak(char** arguments) {
  const Plugin plugin = load(arguments[1]);
  const std::string expected = fresh(arguments[0], arguments[1]);
  // Discards the library's own output.
  std::FILE* const out = fdopen(dup(STDOUT_FILENO), "w");
  if (out == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr ||
      std::freopen("/dev/null", "w", stderr) == nullptr) {
    return 2;
  }
  const int frames = std::atoi(arguments[2]);
  const int rounds = std::atoi(arguments[3]);
  Curve frameCurve(out, "frames", frames);
  Curve roundCurve(out, "rounds", rounds);
  manyFrames(plugin, frames, frameCurve);
  manyRounds(plugin, rounds, roundCurve);
  const bool same = !expected.empty() && scene(plugin) == expected;
  std::fprintf(out, "the last scene, with rand() reset, %s a fresh process\n",
               same ? "is as in" : "DIFFERS from");
  const bool framesFlat = isFlat(out, "frames", frameCurve);
  const bool roundsFlat = isFlat(out, "rounds", roundCurve);
  std::fclose(out);
  return same && framesFlat && roundsFlat ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc == 4 && std::atoi(argv[2]) > 0 && std::atoi(argv[3]) > 0) return soak(argv);
  if (argc != 2) return 2;
  std::fputs(scene(load(argv[1])).c_str(), stdout);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "failed: %s\n", error.what());
  return 1;
}
