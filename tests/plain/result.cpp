// The result document, formatted like the JSON writer's output: members in ascending order, no blanks, a line
// feed at the end.
#include <cstdio>

#include "tests/plain/model.h"

namespace plain {

// Seventeen significant digits; whole numbers also have a fraction.
std::string Model::number(float value) {
  char digits[32];
  std::snprintf(digits, sizeof digits, "%.17g", static_cast<double>(value));
  const std::string text = digits;
  const bool whole = text.find_first_of(".e") == std::string::npos;
  mark(whole ? Branch::numberWhole : Branch::numberFraction);
  return whole ? text + ".0" : text;
}

std::string Model::resultText(const std::string& timestamp, const std::vector<Box>& list) {
  mark(list.size() == 1 ? Branch::resultOneBox : Branch::resultSeveralBoxes);
  std::string text;
  for (const Box& box : list) {
    if (!text.empty()) text += ',';
    text += "{\"height\":" + number(box.height) + ",\"inRoi\":[],\"width\":" + number(box.width) +
            ",\"x\":" + number(box.x) + ",\"y\":" + number(box.y) + "}";
  }
  const std::string objects = list.empty() ? "null" : '[' + text + ']';
  return "{\"object\":" + objects + ",\"timestamp\":\"" + timestamp + "\"}\n";
}

}  // namespace plain
