// Any parameter list through setParam, compared with the plain model. Every line of the input is an entry.
#include <new>
#include <sstream>
#include <stdexcept>

#include "engine/kamble.h"
#include "engine/rules.h"
#include "plugin/detector.h"
#include "simd/cpu_level.h"
#include "tests/fuzz/target.h"
#include "tests/plain/model.h"
#include "tests/system/comparison.h"

namespace {

constexpr std::size_t mostPixels = 8192;

struct Outcome {
  std::vector<bool> accepted;
  std::string thrown;
  bool operator==(const Outcome&) const = default;
};

template <class Call>
Outcome outcomeOf(const Call& call) {
  try {
    return {call(), ""};
  } catch (const std::invalid_argument& error) {
    return {{}, std::string("invalid ") + error.what()};
  } catch (const std::out_of_range& error) {
    return {{}, std::string("range ") + error.what()};
  } catch (const std::bad_alloc&) {
    return {{}, "memory"};
  }
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines = {"frmW 9", "frmH 7"};  // the region masks require a size
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The model allocates its own masks, of any size that it is given.
bool isDrawable(const kAMBLE& engine) {
  const std::int64_t pixels = std::int64_t{engine.szImgX} * engine.szImgY;
  return pixels <= static_cast<std::int64_t>(mostPixels);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> lines = linesOf({reinterpret_cast<const char*>(data), size});
  std::vector<polygon> include = {{"a", {{-1, -1}, {6, -1}, {6, 5}, {-1, 5}}, nullptr}, {"b", {}, nullptr}};
  std::vector<polygon> exclude = {{"c", {{1, 1}, {2, 4}, {8, 0}}, nullptr}};
  lightMotion detector;
  detector.engine = new kAMBLE;
  Outcome outcome;
  {
    const fuzz::MemoryLimit limit(mostPixels);
    outcome = outcomeOf([&] { return detector.engine->setParam(lines, include, exclude); });
  }
  if (outcome.thrown == "memory" || !isDrawable(*detector.engine)) return 0;

  for (std::string& line : lines) line = line.c_str();  // an entry ends at its first NUL
  plain::Model model(GetCpuInstructionSet());
  const Outcome expected = outcomeOf([&] {
    return model.setParam(lines, {{"a", {{-1, -1}, {6, -1}, {6, 5}, {-1, 5}}, {}}, {"b", {}, {}}},
                          {{"c", {{1, 1}, {2, 4}, {8, 0}}, {}}});
  });
  if (outcome.thrown != expected.thrown)
    fuzz::finding("thrown: " + outcome.thrown + ", by the model: " + expected.thrown);
  fuzz::require(outcome.accepted == expected.accepted, "other entries are accepted");
  fuzz::requireSame(firstDifference(detector, model));
  return 0;
}
