// Any texts as timestamps of consecutive frames, compared with the plain model; and each of them in a result
// document. Every line of the input is a timestamp.
#include <json/json.h>

#include <memory>
#include <sstream>
#include <stdexcept>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "simd/cpu_level.h"
#include "tests/fuzz/target.h"
#include "tests/plain/model.h"
#include "tests/system/comparison.h"
#include "tests/system/scripted_clock.h"

namespace {

template <class Call>
std::string thrownBy(const Call& call) {
  try {
    call();
    return "";
  } catch (const std::invalid_argument& error) {
    return std::string("invalid ") + error.what();
  } catch (const std::out_of_range& error) {
    return std::string("range ") + error.what();
  }
}

void configure(lightMotion& detector, plain::Model& model) {
  std::vector<std::string> entries = {"frmW 1", "frmH 1", "frmChn 1"};
  std::vector<polygon> include = {{"a", {{-1, -1}, {2, -1}, {2, 2}, {-1, 2}}, nullptr}};
  std::vector<polygon> exclude;
  detector.engine = new kAMBLE;
  detector.frmW = detector.frmH = detector.frmChn = 1;
  detector.engine->setParam(entries, include, exclude);
  model.setParam(entries, {{"a", {{-1, -1}, {2, -1}, {2, 2}, {-1, 2}}, {}}}, {});
}

// Moves the wall clock by an amount derived from the text, possibly backwards.
void moveClock(const std::string& text, plain::Model& model) {
  timeval now = scriptedTime();
  const int step = text.empty() ? 40 : static_cast<signed char>(text.back());
  now.tv_sec += step / 16;
  now.tv_usec = (now.tv_usec + 1000 * (step & 127)) % 1000000;
  setScriptedTime(now);
  model.now = now;
}

// The result document is JSON whatever follows the number, and has the stated length.
void report(const std::string& timestamp) {
  lightMotion detector;
  detector.objList = {{0.25F, 0.5F, 0.125F, 0.0625F, {}}};
  const int length = detector.genRes(timestamp.c_str());
  fuzz::require(length == static_cast<int>(detector.resText.size()), "a wrong length");
  Json::Value root;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  const char* const text = detector.resText.c_str();
  fuzz::require(reader->parse(text, text + length, &root, nullptr), "a result that is no JSON");
  fuzz::require(root["timestamp"].isString() && root["object"].size() == 1, "a result without its members");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  lightMotion detector;
  plain::Model model(GetCpuInstructionSet());
  configure(detector, model);
  setScriptedTime({1700000000, 0});
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  std::string line;
  for (std::uint8_t frame = 0; frame < 64 && std::getline(lines, line); ++frame) {
    line = line.c_str();  // a host's text ends at the first NUL
    moveClock(line, model);
    const std::uint8_t pixel = frame % 3;
    int length = -1;
    const std::string thrown = thrownBy([&] { detector.frameProc(&pixel, line.c_str(), &length); });
    const std::string expected = thrownBy([&] { model.frameProc(&pixel, 1, 1, 1, line); });
    if (thrown != expected) fuzz::finding("thrown: " + thrown + ", by the model: " + expected);
    fuzz::require(length == 0, "a result of a pixel");
    fuzz::requireSame(firstDifference(detector, model));
    if (thrown.empty()) report(line);
  }
  return 0;
}
