// Calls in any order: single operations, settings, direct writes to public fields and changes of size, made
// to several detectors and to their plain counterparts, compared field by field after every call.
//
// Excluded is what a host must not do: pass frames or masks of other lengths than announced, pass frames of
// another shape than the engine's tables while its frame count is 0, or write values outside the documented
// ranges. Tables of neighbours hold any pixels, masks any values, and sides may be 0 or negative.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "tests/plain/detector.h"
#include "tests/support/dice.h"
#include "tests/system/scene.h"

namespace orders {

struct Shape {
  int width = 0, height = 0;
  int pixels() const { return width * height; }
  bool operator==(const Shape&) const = default;
};
Shape anyShape(Dice& dice);  // several have equal numbers of pixels

using Bytes = std::vector<std::uint8_t>;

// A detector and its plain counterpart, which receive the same calls.
class Pair {
 public:
  explicit Pair(Dice& dice);
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;

  bool hasEngine() const { return real.engine != nullptr; }
  kAMBLE& engine() { return *real.engine; }
  plain::Model& model() { return *plain.engine; }
  const plain::Model& model() const { return *plain.engine; }

  bool hasTables() const { return !model().nbr4Idx.empty(); }
  Shape sized() const { return tables; }  // what the tables were made for
  Shape configured() const { return {model().szImgX, model().szImgY}; }
  std::size_t pixels() const { return static_cast<std::size_t>(model().numPixel); }

  Bytes picture(Dice& dice, Shape shape, int channels);  // the scene's next frame
  std::string timestamp(Dice& dice);

  // Frees the region masks that another configuration replaced.
  void freeDroppedMasks(const std::vector<std::uint8_t*>& before);
  std::vector<std::uint8_t*> masks() const;

  // The first field in which the two differ, or an empty string.
  std::string difference();

  lightMotion real;
  plain::Detector plain;
  Shape tables;
  int channels;  // of most frames

 private:
  scene::Scene scene_;
  int frame_ = 0;
  std::int64_t time_ = 1000;
};

// The results of a call on both sides if they differ, else an empty string.
template <class T>
std::string unequal(const T& real, const T& plain) {
  if (real == plain) return "";
  std::ostringstream text;
  text << "returned: engine " << real << ", model " << plain;
  return text.str();
}
std::string unequal(const std::vector<boxRect>& real, const std::vector<plain::Box>& plain);
std::string unequal(const std::vector<bool>& real, const std::vector<bool>& plain);
std::string unequalBytes(const std::uint8_t* real, const Bytes& plain);

// Calls both sides with the same state of rand() and compares results, exceptions and the use of rand().
// Returns the difference, or an empty string.
template <class Real, class Plain>
std::string callBoth(int seed, const Real& real, const Plain& plain) {
  const auto outcome = [seed](const auto& call, auto& value) -> std::string {
    std::srand(static_cast<unsigned>(seed));
    try {
      value = call();
      return "";
    } catch (const std::exception& thrown) {
      return thrown.what();
    }
  };
  decltype(real()) ours{};
  decltype(plain()) theirs{};
  const std::string ourError = outcome(real, ours);
  const int ourDraw = std::rand();
  const std::string theirError = outcome(plain, theirs);
  if (ourError != theirError) return "threw: engine " + ourError + ", model " + theirError;
  if (ourDraw != std::rand()) return "rand() was called a different number of times";
  return unequal(ours, theirs);
}

// Makes the same change to both.
template <class Change>
void toBoth(Pair& pair, const Change& change) {
  change(pair.engine());
  change(pair.model());
}

// One kind of call. `run` makes it on both sides, describes it in `call` and returns the difference of the
// results.
struct Operation {
  const char* name;
  int weight;
  bool (*allowed)(const Pair&);
  std::string (*run)(Pair& pair, Dice& dice, std::string& call);
};

// orders_*.cpp
std::vector<Operation> frameOperations();
std::vector<Operation> bufferOperations();
std::vector<Operation> configurationOperations();
std::vector<Operation> objectOperations();
std::vector<Operation> fieldOperations();
std::vector<Operation> planeOperations();
std::vector<Operation> tableOperations();
std::vector<Operation> sizeOperations();
std::vector<Operation> detectorOperations();

// Makes `steps` random calls. Returns an empty string, or where the sides differ: seed, step, difference and
// all calls.
std::string run(std::uint32_t seed, int steps);

}  // namespace orders
