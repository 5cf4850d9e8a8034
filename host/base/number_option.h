// Options that take a number within a range.
#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace lm::host::base {

struct NumberRange {
  double least;
  double most;
  const char* unit = "";  // "s"
  bool whole = false;     // no fractions
};

constexpr double kUnlimited = 1e9;  // as `most`: no practical limit

// "0 to 86400 s", or "0.001 s or more" when there is no limit.
std::string range_text(const NumberRange& range);

// What is wrong with `text` as a number in `range`, such as "must be a number, not x"; empty if nothing.
std::string number_fault(const std::string& text, const NumberRange& range);

struct NumberOption {
  const char* name;
  const char* kind;  // kind of value, as help shows it: "SECONDS"
  std::string help;  // the range and the default are appended
  NumberRange range;
  const char* preset;  // the default, as help shows it: "2"
};

CLI::Option* add_number(CLI::App& app, const NumberOption& option, std::function<void(double)> take);

}  // namespace lm::host::base
