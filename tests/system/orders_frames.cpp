// Frames, and the single steps of a frame.
#include "tests/system/orders.h"

namespace orders {
namespace {

bool withEngine(const Pair& pair) { return pair.hasEngine(); }

struct Shot {
  Bytes bytes;  // of the exact size, so that the sanitizers detect reads past the end
  Shape shape;
  int channels;
  bool missing;

  const std::uint8_t* data() const { return missing ? nullptr : bytes.data(); }
  std::string text() const {
    return (missing ? "null, " : "") + std::to_string(shape.width) + "x" + std::to_string(shape.height) +
           "x" + std::to_string(channels);
  }
};

Shot shot(Pair& pair, Dice& dice, Shape shape) {
  const int channels = dice.chance(90) ? pair.channels : dice.oneOf(std::array{1, 2, 3, 4, 5});
  return {pair.picture(dice, shape, channels), shape, channels, dice.chance(1)};
}

// While its frame count is 0, an engine that holds tables accepts only frames of their shape.
Shape nextShape(const Pair& pair, Dice& dice) {
  if (!pair.hasTables()) return anyShape(dice);
  return pair.model().frmCount == 0 || dice.chance(90) ? pair.sized() : anyShape(dice);
}

std::string learn(Pair& pair, Dice& dice, std::string& call) {
  const Shot frame = shot(pair, dice, nextShape(pair, dice));
  call = "learnBg_ncv(" + frame.text() + ")";
  const int w = frame.shape.width;
  const int h = frame.shape.height;
  const bool sizes = pair.model().frmCount == 0;
  const std::string difference = callBoth(
      dice.below(1000), [&] { return pair.engine().learnBg_ncv(frame.data(), w, h, frame.channels); },
      [&] { return pair.model().learnBg(frame.data(), w, h, frame.channels); });
  if (sizes && pair.hasTables()) pair.tables = frame.shape;
  return difference;
}

std::string preprocess(Pair& pair, Dice& dice, std::string& call) {
  const Shot frame = shot(pair, dice, nextShape(pair, dice));
  call = "preprocess_ncv(" + frame.text() + ")";
  const int w = frame.shape.width;
  const int h = frame.shape.height;
  return callBoth(
      0, [&] { return pair.engine().preprocess_ncv(frame.data(), w, h, frame.channels); },
      [&] { return pair.model().preprocess(frame.data(), w, h, frame.channels); });
}

std::string timestamp(Pair& pair, Dice& dice, std::string& call) {
  const std::string text = dice.chance(5) ? "soon" : pair.timestamp(dice);
  call = "setTimestamp(\"" + text + "\")";
  return callBoth(
      0, [&] { return pair.engine().setTimestamp(text.c_str()); },
      [&] { return pair.model().setTimestamp(text); });
}

// An operation without arguments.
template <auto Real, auto Plain>
std::string step(Pair& pair, Dice& /*dice*/, std::string& /*call*/) {
  return callBoth(
      0, [&] { return (pair.engine().*Real)(); }, [&] { return (pair.model().*Plain)(); });
}

std::string estimateRate(Pair& pair, Dice& /*dice*/, std::string& /*call*/) {
  pair.engine().estFrameRate();
  pair.model().estFrameRate();
  return "";
}

std::string differences(Pair& pair, Dice& /*dice*/, std::string& /*call*/) {
  const bool skips = pair.engine().heuristic_ncv();
  pair.model().difference();
  return unequal(skips, false);
}

}  // namespace

std::vector<Operation> frameOperations() {
  return {
      {"learnBg_ncv", 500, withEngine, learn},
      {"preprocess_ncv", 15, withEngine, preprocess},
      {"setTimestamp", 60, withEngine, timestamp},
      {"estFrameRate", 10, withEngine, estimateRate},
      {"heuristic_ncv", 20, withEngine, differences},
      {"updateLock", 10, withEngine, step<&kAMBLE::updateLock, &plain::Model::updateLock>},
      {"initModel_ncv", 6, withEngine, step<&kAMBLE::initModel_ncv, &plain::Model::seed>},
      {"recogFg_ncv", 20, withEngine, step<&kAMBLE::recogFg_ncv, &plain::Model::classify>},
      {"updateModel_ncv", 20, withEngine, step<&kAMBLE::updateModel_ncv, &plain::Model::update>},
  };
}

}  // namespace orders
