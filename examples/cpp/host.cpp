// The smallest complete host in C++: linked to the library, passes it raw frames and prints what moves.
//   cmake -B build && cmake --build build
//   build/host                                     a built-in moving square
//   build/host WIDTH HEIGHT CHANNELS <frames.raw   8-bit frames, rows without padding; 1, 3 or 4 channels
// Prints one line per box: timestamp, left, top, width and height in pixels.
// Exit status: 0 success, 1 failure, 2 wrong usage. Without the library the program does not start: 127.
#include <json/json.h>
#include <plugin/entry_points.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

using Frame = std::vector<unsigned char>;

// 40 frames of 160 x 120 grey pixels; from the second on, a bright square moves to the right.
static bool draw(Frame& frame, int number) {
  frame.assign(160 * 120, 60);
  for (int y = 48; number > 0 && y < 72; ++y) std::fill_n(frame.begin() + y * 160 + 2 * number, 24, 200);
  return number < 40;
}

static bool read(Frame& frame) {
  if (std::cin.read(reinterpret_cast<char*>(frame.data()), std::ssize(frame))) return true;
  if (std::cin.gcount() > 0 || std::cin.bad()) throw std::runtime_error("the input ends within a frame");
  return false;
}

// The one detector of the process.
struct Detector {
  explicit Detector(const std::string& config) {
    if (!initialization(config.c_str())) throw std::runtime_error("the plug-in refused the configuration");
  }
  ~Detector() { terminate(); }
  Detector(const Detector&) = delete;
  Detector& operator=(const Detector&) = delete;
};

static long size_from(std::string_view text) {
  long size = 0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), size);
  if (error != std::errc() || end != text.end() || size < 1) throw std::invalid_argument("not a size");
  return size;
}

// Start or length of a box in pixels.
static long pixels(double fraction, long size) { return std::lround(fraction * static_cast<double>(size)); }

static void print_boxes(const char* document, long width, long height) {
  Json::Value result;
  std::istringstream(document) >> result;
  for (const Json::Value& box : result["object"]) {
    const double x = box["x"].asDouble();
    const double y = box["y"].asDouble();
    // A box can extend beyond the right or bottom border: clip it before any use.
    const double right = std::min(x + box["width"].asDouble(), 1.0);
    const double bottom = std::min(y + box["height"].asDouble(), 1.0);
    std::cout << result["timestamp"].asString() << ' ' << pixels(x, width) << ' ' << pixels(y, height) << ' '
              << pixels(right - x, width) << ' ' << pixels(bottom - y, height) << '\n';
  }
}

static void show(long width, long height, long channels, bool from_input) {
  if (channels == 2 || channels > 4) throw std::invalid_argument("channels must be 1, 3 or 4");
  if (width > INT_MAX / channels / height) throw std::invalid_argument("the frame is too large");
  // The region is larger than the frame, because a region's own left edge is outside it.
  const Detector detector(R"({"frmW":")" + std::to_string(width) + R"(","frmH":")" + std::to_string(height) +
                          R"(","frmChn":")" + std::to_string(channels) +
                          R"(","roi":[{"name":"","points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},)" +
                          R"({"x":"2","y":"2"},{"x":"-1","y":"2"}]}]})");
  Frame frame(static_cast<std::size_t>(width * height * channels));
  for (int number = 0; from_input ? read(frame) : draw(frame, number); ++number) {
    const std::string timestamp = std::to_string(1 + 40LL * number);  // milliseconds, at 25 frames per second
    int length = 0;
    if (frameProc(frame.data(), timestamp.c_str(), &length) != 1)
      throw std::runtime_error("the plug-in lost its detector");
    std::vector<char> document(static_cast<std::size_t>(length) + 1);
    if (length > 0 && getRes(document.data()) == 1) print_boxes(document.data(), width, height);
  }
  if (!std::cout.flush()) throw std::runtime_error("cannot write the results");
}

int main(int argc, char** argv) {
  try {
    if (argc != 1 && argc != 4) throw std::invalid_argument("usage: host [WIDTH HEIGHT CHANNELS <frames]");
    if (argc == 1) show(160, 120, 1, false);
    if (argc == 4) show(size_from(argv[1]), size_from(argv[2]), size_from(argv[3]), true);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "host: " << error.what() << '\n';
    return dynamic_cast<const std::invalid_argument*>(&error) != nullptr ? 2 : 1;
  }
}
