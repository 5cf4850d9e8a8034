// Reads one entry of the parameter list: its key, its value and the number in the value.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "config/param_table.h"

namespace lm {

// Key and value of the entry being read.
//
// Kept: both keep their text. An entry with only a key takes the value of the entry before it, and an empty
// one repeats the entry before it.
class EntryScanner {
 public:
  // Returns whether the entry has its own value.
  bool scan(const std::string& entry) {
    std::string_view rest(entry.c_str());  // an entry ends at its first NUL
    return takeToken(rest, key) && takeToken(rest, value);
  }

  std::string key;
  std::string value;

 private:
  static bool takeToken(std::string_view& rest, std::string& token) {
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    const std::size_t start = std::min(rest.find_first_not_of(whiteSpace), rest.size());
    rest.remove_prefix(start);
    if (rest.empty()) return false;
    const std::size_t length = std::min(rest.find_first_of(whiteSpace), rest.size());
    token = rest.substr(0, length);
    rest.remove_prefix(length);
    return true;
  }
};

// Throws std::invalid_argument or std::out_of_range. `used`: length of the number.
inline double convertParam(Conversion conversion, const std::string& value, std::size_t* used = nullptr) {
  if (conversion == Conversion::integer) return std::stoi(value, used);
  return static_cast<double>(std::stof(value, used));
}

}  // namespace lm
