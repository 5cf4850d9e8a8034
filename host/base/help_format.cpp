#include "host/base/help_format.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <utility>

namespace lm::host::base {
namespace {

constexpr std::size_t kPage = 80;
constexpr std::size_t kColumn = 28;

class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat() {
    column_width(kColumn);
    label("Positionals", "Arguments");
    label("OPTIONS", "OPTION...");
    label("SUBCOMMAND", "COMMAND");
  }

  // One blank line between groups, none at the end.
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
    std::string help = Formatter::make_help(app, std::move(name), mode);
    for (std::size_t at = 0; (at = help.find("\n\n\n", at)) != std::string::npos;) help.erase(at, 1);
    while (help.ends_with("\n\n")) help.pop_back();
    return help;
  }

  std::string make_description(const CLI::App* app) const override {
    return wrapped(app->get_description(), kPage) + "\n\n";
  }

  // Requirements and exclusions are reported when an option is used wrongly.
  std::string make_option_opts(const CLI::Option* option) const override {
    const bool value = option->get_items_expected_max() > 0 && !option->get_type_name().empty();
    return value ? " " + option->get_type_name() : "";
  }

  std::string make_option_desc(const CLI::Option* option) const override {
    return wrapped(option->get_description(), kPage - kColumn);
  }
};

// Text in parentheses is kept on one line if it fits.
std::size_t word_end(const std::string& line, std::size_t begin, std::size_t width) {
  const std::size_t close = line[begin] == '(' ? line.find(')', begin) : std::string::npos;
  const bool together = close != std::string::npos && close - begin < width;
  return std::min(line.find(' ', together ? close : begin), line.size());
}

}  // namespace

std::string wrapped(const std::string& text, std::size_t width) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!result.empty()) result += '\n';
    std::size_t used = 0;
    for (std::size_t begin = line.find_first_not_of(' '), end = 0; begin != std::string::npos;
         begin = line.find_first_not_of(' ', end)) {
      end = word_end(line, begin, width);
      const bool fits = used + 1 + end - begin <= width;
      if (used > 0) result += fits ? ' ' : '\n';
      used = used > 0 && fits ? used + 1 + end - begin : end - begin;
      result.append(line, begin, end - begin);
    }
  }
  return result;
}

std::shared_ptr<CLI::FormatterBase> help_format() { return std::make_shared<HelpFormat>(); }

}  // namespace lm::host::base
