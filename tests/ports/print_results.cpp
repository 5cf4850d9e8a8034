// Prints what the library computes, as text that is the same on every architecture.
//   print_results           a digest of each sequence of tests/system
//   print_results - < FILE  for each frame of a file that raw_frames wrote, the result documents and a digest
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "tests/system/driver.h"

namespace {

// Of the values of numbers, not of their bytes in memory.
class Digest {
 public:
  void add(std::uint64_t number) {
    hash_ = (hash_ ^ number) * 0x9E3779B97F4A7C15;
    hash_ ^= hash_ >> 32;
  }
  void add(float number) { add(std::uint64_t{std::bit_cast<std::uint32_t>(number)}); }
  template <typename T>
  void plane(const T* plane, std::size_t count) {
    add(std::uint64_t{plane != nullptr});
    for (std::size_t i = 0; plane != nullptr && i < count; ++i) {
      if constexpr (std::is_same_v<T, float>) {
        add(plane[i]);
      } else {
        add(static_cast<std::uint64_t>(plane[i]));
      }
    }
  }
  std::uint64_t value() const { return hash_; }

 private:
  std::uint64_t hash_ = 0;
};

// The document and what the engine remembers.
void addState(Digest& digest, const lightMotion& detector) {
  for (const char letter : detector.resText) digest.add(std::uint64_t{static_cast<unsigned char>(letter)});
  const kAMBLE& engine = *detector.engine;
  const std::size_t pixels = engine.bgModel.size();
  for (const std::uint8_t* plane : {engine.fgMask, engine.absorbMask, engine.rdDiff})
    digest.plane(plane, pixels);
  for (const std::uint32_t* plane :
       {engine.minDist, engine.nbrCursor, engine.sampleCursor, engine.refreshCount}) {
    digest.plane(plane, pixels);
  }
  digest.plane(engine.updTimer, pixels);
  digest.plane(engine.fgLife, pixels);
  digest.add(engine.illumRatio);
  for (const BgModel& model : engine.bgModel) {
    for (const auto& [a, b, c, d] : model.samples) digest.add(std::uint64_t{a} << 24 | b << 16 | c << 8 | d);
  }
}

int printSequences() {
  for (const Sequence& sequence : allSequences()) {
    Digest digest;
    const std::string difference =
        compareOver(sequence, [&](const lightMotion& detector) { addState(digest, detector); });
    if (!difference.empty()) {
      std::fprintf(stderr, "%s\n", difference.c_str());
      return EXIT_FAILURE;
    }
    std::printf("%-40s %016llx\n", sequence.name.c_str(), static_cast<unsigned long long>(digest.value()));
  }
  return EXIT_SUCCESS;
}

std::string configuration(int width, int height) {
  return R"({"frmW":")" + std::to_string(width) + R"(","frmH":")" + std::to_string(height) +
         R"(","frmChn":"3","sensitivity":"4","lcAdap":"3","roi":[{"name":"all","points":[)"
         R"({"x":"0","y":"0"},{"x":"1","y":"0"},{"x":"1","y":"1"},{"x":"0","y":"1"}]}]})";
}

// Both engines, from the same state of rand().
int printFrames(std::istream& file) {
  int width = 0;
  int height = 0;
  if (!(file >> width >> height) || width < 1 || height < 1 || file.get() != '\n') return EXIT_FAILURE;
  std::vector<char> frame(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
  const std::string text = configuration(width, height);
  lightMotion detector;
  if (!initialization(text.c_str()) || !detector.init(text.c_str())) return EXIT_FAILURE;
  int documents = 0;
  for (int number = 0; file.read(frame.data(), static_cast<std::streamsize>(frame.size())); ++number) {
    const auto* pixels = reinterpret_cast<const unsigned char*>(frame.data());
    const std::string timestamp = std::to_string(1000 + 200 * number);
    int length = 0;
    std::srand(1);
    frameProc(pixels, timestamp.c_str(), &length);
    std::string result(static_cast<std::size_t>(length), '\0');
    if (length > 0) getRes(result.data());
    if (length > 0) ++documents;
    std::srand(1);
    detector.frameProc(pixels, timestamp.c_str(), &length);
    Digest digest;
    addState(digest, detector);
    std::printf("%d %016llx %s", number, static_cast<unsigned long long>(digest.value()),
                result.empty() ? "\n" : result.c_str());
  }
  terminate();
  return documents > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char**) { return argc == 1 ? printSequences() : printFrames(std::cin); }
