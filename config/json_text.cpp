#include "config/json_text.h"

#include <json/json.h>

#include <algorithm>
#include <cstdint>
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
  const auto after = [&](std::string_view terminator, std::size_t start) {
    const std::size_t found = text.find(terminator, start);
    return found == std::string_view::npos ? text.size() : found + terminator.size();
  };
  // jsoncpp ends these comments at a carriage return too.
  if (text.substr(from, 2) == "//") return std::min(text.find_first_of("\r\n", from), text.size());
  if (text.substr(from, 2) == "/*") return after("*/", from + 2);
  if (text[from] != '"') return from;
  std::size_t at = from + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

// The characters that jsoncpp takes for one number.
struct Number {
  std::string_view whole;  // with the sign
  bool hasPoint = false;
  std::string_view fraction;  // digits only
  std::string_view exponent;  // with "e" and sign; empty when there is none
  std::size_t end = 0;
};

Number readNumber(std::string_view text, std::size_t from) {
  Number number;
  std::size_t at = digitsEnd(text, text[from] == '-' ? from + 1 : from);
  number.whole = text.substr(from, at - from);
  if (at < text.size() && text[at] == '.') {
    const std::size_t start = at + 1;
    at = digitsEnd(text, start);
    number.hasPoint = true;
    number.fraction = text.substr(start, at - start);
  }
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t start = at++;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    at = digitsEnd(text, at);
    number.exponent = text.substr(start, at - start);
  }
  number.end = at;
  return number;
}

// Value of an exponent such as "e-12". One far beyond the range of a double is cut to `limit`, which no
// fraction is long enough to bring back into that range.
std::int64_t exponentValue(std::string_view exponent) {
  constexpr std::int64_t limit = 1'000'000'000'000'000;
  std::int64_t value = 0;
  for (const char c : exponent) {
    if (isDigit(c)) value = std::min(limit, value * 10 + (c - '0'));
  }
  return exponent.find('-') == std::string_view::npos ? value : -value;
}

void appendWithoutPoint(const Number& number, std::string& result) {
  result.append(number.whole).append(number.fraction);
  if (!number.exponent.empty() && !isDigit(number.exponent.back())) {
    result.append(number.exponent);  // has no digits: refused, as it would be with the point
    return;
  }
  const auto decimals = static_cast<std::int64_t>(number.fraction.size());
  result.append("e").append(std::to_string(exponentValue(number.exponent) - decimals));
}

// jsoncpp reads numbers through a stream, which uses the host's global locale.
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
    if (end == at && (isDigit(text[at]) || text[at] == '-')) {
      const Number number = readNumber(text, at);
      if (number.hasPoint) {
        appendWithoutPoint(number, result);
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
