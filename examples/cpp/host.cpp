// The smallest complete host in C++: linked against the library, shows it raw frames and prints what moves.
//   cmake -B build && cmake --build build
//   build/host                                     a moving square of its own
//   build/host WIDTH HEIGHT CHANNELS <frames.raw   8-bit frames, rows without padding; 1, 3 or 4 channels
// Exit status: 0 fine, 1 trouble, 2 wrong use. Without the library the program does not start: 127.
#include <plugin/entry_points.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

using Frame = std::vector<unsigned char>;

// 40 frames of 160 x 120 grey pixels: from the second on, a bright square walks to the right.
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

// The process's one detector.
struct Detector {
  explicit Detector(const std::string& config) {
    if (!initialization(config.c_str())) throw std::runtime_error("the plug-in refuses its configuration");
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

static void show(long width, long height, long channels, bool from_input) {
  if (channels == 2 || channels > 4) throw std::invalid_argument("channels have to be 1, 3 or 4");
  if (width > INT_MAX / channels / height) throw std::invalid_argument("no frame can be that large");
  // The whole frame counts; it starts left of itself because a region's own left edge lies outside it.
  const Detector detector(R"({"frmW":")" + std::to_string(width) + R"(","frmH":")" + std::to_string(height) +
                          R"(","frmChn":")" + std::to_string(channels) +
                          R"(","roi":[{"name":"","points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},)" +
                          R"({"x":"2","y":"2"},{"x":"-1","y":"2"}]}]})");
  Frame frame(static_cast<std::size_t>(width * height * channels));
  for (int number = 0; from_input ? read(frame) : draw(frame, number); ++number) {
    const std::string timestamp = std::to_string(1 + 40LL * number);  // milliseconds, at 25 frames a second
    int length = 0;
    if (frameProc(frame.data(), timestamp.c_str(), &length) != 1) throw std::runtime_error("no detector");
    std::vector<char> document(static_cast<std::size_t>(length) + 1);
    if (length > 0) getRes(document.data());
    std::cout << document.data();
  }
  if (!std::cout.flush()) throw std::runtime_error("the results cannot be written");
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
