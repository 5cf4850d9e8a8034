#include "host/base/number_option.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

namespace lm::host::base {
namespace {

// Independent of the locale.
std::optional<double> number_of(const std::string& text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end) return std::nullopt;
  return value;
}

std::string shortest(double value) {
  char text[32];
  const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
  return {text, end};
}

std::string with_unit(std::string text, const NumberRange& range) {
  if (*range.unit != '\0') text.append(" ").append(range.unit);
  return text;
}

}  // namespace

std::string range_text(const NumberRange& range) {
  if (range.most >= kUnlimited) return with_unit(shortest(range.least), range) + " or more";
  return with_unit(shortest(range.least) + " to " + shortest(range.most), range);
}

std::string number_fault(const std::string& text, const NumberRange& range) {
  const std::optional<double> value = number_of(text);
  const char* kind = range.whole ? "must be a whole number" : "must be a number";
  if (!value || (range.whole && *value != std::floor(*value))) return kind + (", not " + text);
  if (*value >= range.least && *value <= range.most) return "";
  const std::string limits = shortest(range.least) + " to " + shortest(range.most);
  return "must be " + with_unit(limits, range) + ", not " + text;
}

CLI::Option* add_number(CLI::App& app, const NumberOption& option, std::function<void(double)> take) {
  const std::string help = option.help + " (" + range_text(option.range) + ", default " + option.preset + ")";
  const auto store = [take = std::move(take)](const std::string& text) { take(*number_of(text)); };
  return app.add_option_function<std::string>(option.name, store, help)
      ->type_name(option.kind)
      ->check([range = option.range](const std::string& text) { return number_fault(text, range); });
}

}  // namespace lm::host::base
