// HTML text.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace lm::host::outputs::report {

// Escapes `text` for an HTML element or a quoted attribute. Invalid UTF-8 and control characters become
// replacement characters.
std::string escaped(std::string_view text);

using Values = std::map<std::string, std::string, std::less<>>;

// The template with {{name}} replaced by the escaped value, and {{{name}}} by the value as it is. Throws
// std::logic_error for a name without a value.
std::string fill(std::string_view page, const Values& values);

// "data:image/jpeg;base64,..."
std::string data_uri(const std::string& jpeg);

}  // namespace lm::host::outputs::report
