// Making, sizing and releasing.
#include <cstdlib>

#include "tests/system/orders.h"

namespace orders {
namespace {

// Frees what a second set-up replaces without freeing it.
class Replaced {
 public:
  explicit Replaced(const kAMBLE& engine) : background_(engine.bgImg), arrays_(engine.nbrIdx) {}
  ~Replaced() {
    std::free(background_);
    for (const int* array : arrays_) delete[] array;
  }
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;

 private:
  std::uint8_t* background_;
  std::vector<int*> arrays_;
};

std::string make(Pair& pair, Dice& /*dice*/, std::string& call) {
  call = "new kAMBLE";
  pair.real.engine = new kAMBLE;
  pair.plain.engine.emplace(pair.plain.level());
  return "";
}

bool canInitialize(const Pair& pair) { return pair.hasEngine() && pair.model().frmChn >= 1; }

std::string initialize(Pair& pair, Dice& dice, std::string& call) {
  const Shape shape = pair.hasTables() ? pair.sized() : anyShape(dice);
  call = "initialization_ncv(" + std::to_string(shape.width) + ", " + std::to_string(shape.height) + ")";
  const Replaced replaced(pair.engine());
  pair.tables = shape;
  return callBoth(
      dice.below(1000), [&] { return pair.engine().initialization_ncv(shape.width, shape.height); },
      [&] { return pair.model().initialization(shape.width, shape.height); });
}

bool canMakeBuffers(const Pair& pair) {
  if (!canInitialize(pair) || pair.configured().width < 1 || pair.configured().height < 1) return false;
  return !pair.hasTables() || pair.configured() == pair.sized();
}

std::string makeBuffers(Pair& pair, Dice& dice, std::string& call) {
  call = "initBuffer_ncv()";
  const Replaced replaced(pair.engine());
  pair.tables = pair.configured();
  return callBoth(
      dice.below(1000), [&] { return pair.engine().initBuffer_ncv(); },
      [&] { return pair.model().initBuffer(); });
}

bool withEngine(const Pair& pair) { return pair.hasEngine(); }

std::string destroy(Pair& pair, Dice& /*dice*/, std::string& call) {
  call = "destoryBuffer()";
  pair.engine().destoryBuffer();
  pair.model().destroyBuffer();
  return "";
}

// As a host does before it passes frames of another size.
std::string restart(Pair& pair, Dice& dice, std::string& call) {
  destroy(pair, dice, call);
  toBoth(pair, [](auto& state) { state.frmCount = 0; });
  call = "destoryBuffer(), frmCount = 0";
  return "";
}

// The host sets numPixel when it made the buffers without a frame.
bool holdsBuffers(const Pair& pair) { return pair.hasEngine() && pair.hasTables(); }

std::string numPixel(Pair& pair, Dice& /*dice*/, std::string& call) {
  const int pixels = pair.sized().pixels();
  call = "numPixel = " + std::to_string(pixels);
  toBoth(pair, [pixels](auto& state) { state.numPixel = pixels; });
  return "";
}

// Before any table is made; the entries must include the offset of the pixel itself.
bool withoutTables(const Pair& pair) { return pair.hasEngine() && !pair.hasTables(); }

std::string numNbr(Pair& pair, Dice& dice, std::string& call) {
  const int entries = dice.chance(60) ? 25 : dice.between(13, 25);
  call = "numNbr = " + std::to_string(entries);
  toBoth(pair, [entries](auto& state) { state.numNbr = entries; });
  return "";
}

}  // namespace

std::vector<Operation> bufferOperations() {
  return {
      {"new kAMBLE", 100, [](const Pair& pair) { return !pair.hasEngine(); }, make},
      {"initialization_ncv", 5, canInitialize, initialize},
      {"initBuffer_ncv", 5, canMakeBuffers, makeBuffers},
      {"destoryBuffer", 2, withEngine, destroy},
      {"restart", 6, withEngine, restart},
      {"numPixel", 3, holdsBuffers, numPixel},
      {"numNbr", 2, withoutTables, numNbr},
  };
}

}  // namespace orders
