// How help looks.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace CLI {
class FormatterBase;
}

namespace lm::host::base {

// `text` broken at blanks into lines of at most `width` characters. Line feeds in it stay; what is in
// parentheses stays together; a longer word has its own line.
std::string wrapped(const std::string& text, std::size_t width);

// For pages of 80 columns: options with the kind of their value, then the explanation.
std::shared_ptr<CLI::FormatterBase> help_format();

}  // namespace lm::host::base
