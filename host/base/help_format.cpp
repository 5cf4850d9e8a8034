#include "host/base/help_format.h"

#include <CLI/CLI.hpp>
#include <sstream>

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

  std::string make_description(const CLI::App* app) const override {
    return wrapped(app->get_description(), kPage) + "\n\n";
  }

  // What an option needs or excludes is explained when it is used wrongly.
  std::string make_option_opts(const CLI::Option* option) const override {
    const bool value = option->get_items_expected_max() > 0 && !option->get_type_name().empty();
    return value ? " " + option->get_type_name() : "";
  }

  std::string make_option_desc(const CLI::Option* option) const override {
    return wrapped(option->get_description(), kPage - kColumn);
  }
};

}  // namespace

std::string wrapped(const std::string& text, std::size_t width) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!result.empty()) result += '\n';
    std::istringstream words(line);
    std::size_t used = 0;
    for (std::string word; words >> word; used += word.size()) {
      if (used > 0 && used + 1 + word.size() > width) {
        result += '\n';
        used = 0;
      } else if (used > 0) {
        result += ' ';
        ++used;
      }
      result += word;
    }
  }
  return result;
}

std::shared_ptr<CLI::FormatterBase> help_format() { return std::make_shared<HelpFormat>(); }

}  // namespace lm::host::base
