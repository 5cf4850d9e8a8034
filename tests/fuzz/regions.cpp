// Region lists with all kinds of fractions: the document's reader and the masks, compared with the plain
// model.
#include <cstdio>
#include <stdexcept>

#include "config/polygon.h"
#include "engine/kamble.h"
#include "plugin/detector.h"
#include "simd/cpu_level.h"
#include "tests/fuzz/target.h"
#include "tests/plain/model.h"
#include "tests/system/comparison.h"

namespace {

constexpr std::array extremes = {"-1",
                                 "2",
                                 "0",
                                 "1",
                                 "0.5",
                                 "inf",
                                 "-inf",
                                 "nan",
                                 "-nan(7)",
                                 "infinity",
                                 "1e38",
                                 "-1e38",
                                 "3.5e38",
                                 "1e-45",
                                 "1e-46",
                                 "1e999",
                                 "0x1p3",
                                 "0x1.fffffep127",
                                 "-0",
                                 "0.9999999",
                                 "1.0000001",
                                 "33554432",
                                 "-33554432",
                                 "2147483648",
                                 "-2147483649",
                                 "67108863.99",
                                 "",
                                 " 1",
                                 "1,5",
                                 "1e",
                                 "+.5",
                                 ".",
                                 "x",
                                 "1e-2147483649",
                                 "00000000000000000000001"};

std::string fraction(fuzz::Choices& choices) {
  switch (choices.below(3)) {
    case 0:
      return std::to_string(choices.between(-20, 120)) + "e-2";
    case 1:
      return choices.of(extremes);
    default: {
      std::array<char, 32> text{};
      std::snprintf(text.data(), text.size(), "%.9g", double{choices.number<float>()});
      return text.data();
    }
  }
}

std::vector<plain::RegionText> regions(fuzz::Choices& choices, int most) {
  std::vector<plain::RegionText> list;
  for (int left = choices.below(most + 1); left > 0; --left) {
    plain::RegionText region{"region", {}};
    for (int points = choices.below(9); points > 0; --points) {
      const std::string x = fraction(choices);
      const std::string y = fraction(choices);
      region.points.emplace_back(x, y);
    }
    list.push_back(region);
  }
  return list;
}

std::string document(const std::vector<plain::RegionText>& include,
                     const std::vector<plain::RegionText>& exclude) {
  std::string text = "{";
  for (const auto& [key, list] : {std::pair{"roi", &include}, {"ror", &exclude}}) {
    if (text.size() > 1) text += ',';
    text.append(1, '"').append(key).append("\":[");
    for (const plain::RegionText& region : *list) {
      if (text.back() != '[') text += ',';
      text += "{\"name\":\"" + region.name + "\",\"points\":[";
      for (const auto& [x, y] : region.points) {
        if (text.back() != '[') text += ',';
        text += "{\"x\":\"" + x + "\",\"y\":\"" + y + "\"}";
      }
      text += "]}";
    }
    text += "]";
  }
  return text + "}";
}

// The exception that `call` throws, as text.
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

// Only requires that nothing crashes: the array form takes any float.
void tryPoints(fuzz::Choices choices) {
  std::array<float, 6> x{};
  std::array<float, 6> y{};
  for (float& value : x) value = choices.number<float>();
  for (float& value : y) value = choices.number<float>();
  const int inside = pnpoly(6, x.data(), y.data(), choices.number<float>(), choices.number<float>());
  fuzz::require(inside == 0 || inside == 1, "a point neither inside nor outside");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Choices choices(data, size);
  tryPoints(choices);
  const int width = choices.between(1, 70);
  const int height = choices.between(1, 60);
  const auto include = regions(choices, 3);
  const auto exclude = regions(choices, 3);

  lightMotion detector;
  detector.engine = new kAMBLE;
  detector.frmW = width;
  detector.frmH = height;
  plain::Model model(GetCpuInstructionSet());
  std::vector<polygon> included;
  std::vector<polygon> excluded;
  std::vector<plain::Region> plainIncluded;
  std::vector<plain::Region> plainExcluded;
  const std::string thrown = thrownBy([&] {
    fuzz::require(detector.jsonReaderRoi(document(include, exclude), included, excluded),
                  "a document that is no JSON");
  });
  const std::string plainThrown = thrownBy([&] {
    plainIncluded = model.regionsInPixels(include, width, height, 3);
    plainExcluded = model.regionsInPixels(exclude, width, height, 0);
  });
  if (thrown != plainThrown) fuzz::finding("thrown: " + thrown + ", by the model: " + plainThrown);
  if (!thrown.empty()) return 0;

  std::vector<std::string> entries = {"frmW " + std::to_string(width), "frmH " + std::to_string(height)};
  detector.engine->setParam(entries, included, excluded);
  model.setParam(entries, plainIncluded, plainExcluded);
  fuzz::requireSame(firstDifference(detector, model));
  return 0;
}
