#include "host/outputs/report/markup.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

extern "C" {
#include <libavutil/base64.h>
}

namespace lm::host::outputs::report {
namespace {

constexpr std::string_view kReplacement = "\xef\xbf\xbd";

// The length in bytes of the character at the start of `text`; 0 if it is not valid UTF-8.
std::size_t length_of_character(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return 0;
  }
  const unsigned second = byte(1);
  const bool odd = (first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f) ||  // surrogates
                   (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f);
  return odd ? 0 : length;
}

std::string_view as_markup(std::string_view character) {
  switch (character[0]) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    case '\t':
    case '\n':
    case '\r':
      return " ";
    default: {
      const auto code = static_cast<unsigned char>(character[0]);
      return code < ' ' || code == 0x7f ? kReplacement : character;
    }
  }
}

const std::string& value_of(const Values& values, std::string_view name) {
  const auto found = values.find(name);
  if (found == values.end()) throw std::logic_error("no value for " + std::string(name));
  return found->second;
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string markup;
  while (!text.empty()) {
    const std::size_t length = length_of_character(text);
    markup += length == 0 ? kReplacement : as_markup(text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return markup;
}

std::string fill(std::string_view page, const Values& values) {
  std::string text;
  for (;;) {
    const std::size_t open = page.find("{{");
    text += page.substr(0, open);
    if (open == std::string_view::npos) return text;
    page.remove_prefix(open + 2);
    const bool as_it_is = page.starts_with('{');
    const std::string_view end = as_it_is ? "}}}" : "}}";
    const std::size_t close = page.find(end);
    if (close == std::string_view::npos) throw std::logic_error("unterminated placeholder");
    const std::string& value = value_of(values, page.substr(as_it_is, close - as_it_is));
    text += as_it_is ? value : escaped(value);
    page.remove_prefix(close + end.size());
  }
}

std::string data_uri(const std::string& jpeg) {
  const auto size = static_cast<int>(jpeg.size());
  std::string text(static_cast<std::size_t>(AV_BASE64_SIZE(size)), '\0');
  av_base64_encode(text.data(), static_cast<int>(text.size()),
                   reinterpret_cast<const std::uint8_t*>(jpeg.data()), size);
  text.pop_back();  // the encoder's terminating zero
  return "data:image/jpeg;base64," + text;
}

}  // namespace lm::host::outputs::report
