// The layout of --help.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace CLI {
class FormatterBase;
}

namespace lm::host::base {

// `text` wrapped at blanks to lines of at most `width` characters. Line feeds are kept; text in parentheses
// stays together; a longer word gets its own line.
std::string wrapped(const std::string& text, std::size_t width);

// For 80 columns: options with the kind of their value, then the explanation.
std::shared_ptr<CLI::FormatterBase> help_format();

}  // namespace lm::host::base
