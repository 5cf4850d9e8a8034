#include "tests/support/mask_art.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace lm::test {
namespace {

constexpr std::array<std::pair<char, std::uint8_t>, 5> namedValues{
    {{'.', 0}, {'x', 252}, {'y', 253}, {'z', 254}, {'#', 255}}};

std::uint8_t valueOf(char symbol) {
  if (symbol >= '0' && symbol <= '9') {
    return static_cast<std::uint8_t>(symbol - '0');
  }
  for (const auto& [name, value] : namedValues) {
    if (name == symbol) {
      return value;
    }
  }
  throw std::invalid_argument(std::string("no value for the symbol ") + symbol);
}

}  // namespace

Bytes bytesOf(const Rows& rows) {
  Bytes bytes;
  for (const std::string& row : rows) {
    for (const char symbol : row) {
      bytes.push_back(valueOf(symbol));
    }
  }
  return bytes;
}

std::string symbolOf(std::uint64_t value) {
  for (const auto& [name, named] : namedValues) {
    if (named == value) {
      return {name};
    }
  }
  std::string text = std::to_string(value);
  return value < 10 ? text : '<' + text + '>';
}

std::string picture(const Rows& rows) { return drawing(bytesOf(rows), static_cast<int>(rows.at(0).size())); }

}  // namespace lm::test
