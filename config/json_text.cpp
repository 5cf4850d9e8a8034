#include "config/json_text.h"

#include <json/json.h>

#include <charconv>
#include <locale>
#include <string_view>

#include "base/c_locale.h"

namespace lm {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t digitsEnd(std::string_view text, std::size_t from) {
  while (from < text.size() && isDigit(text[from])) ++from;
  return from;
}

// End of the string or comment that begins at `from`; `from` when none does.
std::size_t opaqueEnd(std::string_view text, std::size_t from) {
  const auto behind = [&](std::string_view terminator, std::size_t start) {
    const std::size_t found = text.find(terminator, start);
    return found == std::string_view::npos ? text.size() : found + terminator.size();
  };
  if (text.substr(from, 2) == "//") return behind("\n", from);
  if (text.substr(from, 2) == "/*") return behind("*/", from + 2);
  if (text[from] != '"') return from;
  std::size_t at = from + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

// A number's text, from its first digit on.
struct Number {
  std::string_view whole;
  std::string_view fraction;
  long exponent = 0;
  std::size_t end = 0;
};

// Reads the number whose first digit is at `from`. An exponent too large to be read ends the number before
// it.
Number readNumber(std::string_view text, std::size_t from) {
  Number number;
  number.end = digitsEnd(text, from);
  number.whole = text.substr(from, number.end - from);
  if (number.end < text.size() && text[number.end] == '.') {
    const std::size_t start = number.end + 1;
    number.end = digitsEnd(text, start);
    number.fraction = text.substr(start, number.end - start);
  }
  if (number.end < text.size() && (text[number.end] == 'e' || text[number.end] == 'E')) {
    std::size_t start = number.end + 1;
    if (start < text.size() && text[start] == '+') ++start;
    const auto [stop, error] =
        std::from_chars(text.data() + start, text.data() + text.size(), number.exponent);
    if (error == std::errc()) number.end = static_cast<std::size_t>(stop - text.data());
  }
  return number;
}

// jsoncpp reads numbers through a stream that has the host's global locale.
bool globalLocaleIsPlain() {
  const std::locale current;
  const auto& numbers = std::use_facet<std::numpunct<char>>(current);
  return numbers.decimal_point() == '.' && numbers.grouping().empty();
}

}  // namespace

std::string withoutDecimalPoints(const std::string& text) {
  std::string result;
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t end = opaqueEnd(text, at);
    if (end == at && isDigit(text[at])) {
      const Number number = readNumber(text, at);
      if (!number.fraction.empty()) {
        const long exponent = number.exponent - static_cast<long>(number.fraction.size());
        result.append(number.whole).append(number.fraction).append("e").append(std::to_string(exponent));
        at = number.end;
        continue;
      }
      end = number.end;
    }
    if (end == at) ++end;
    result.append(text, at, end - at);
    at = end;
  }
  return result;
}

bool parseDocument(const std::string& text, Json::Value& root) {
  const CLocaleScope plainNumbers;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // the reader whose behaviour documents rely on
  Json::Reader reader;
#pragma GCC diagnostic pop
  return reader.parse(globalLocaleIsPlain() ? text : withoutDecimalPoints(text), root, true);
}

}  // namespace lm
