#include "host/commands/archive/folder_name.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>

namespace lm::host::commands::archive {
namespace {

constexpr std::size_t kLongestName = 100;

bool kept(unsigned char c) { return c >= 0x80 || std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-'; }

// UTF-8 continuation bytes.
bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

}  // namespace

std::string digest(const std::string& text) {
  std::uint64_t sum = 0xcbf29ce484222325;
  for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(sum));
  return digits.data();
}

std::string folder_name(const std::string& path) {
  std::string name = path.substr(path.find_last_of('/') + 1);
  if (name.size() > kLongestName) {
    std::size_t length = kLongestName;
    while (length > 0 && continues(name[length])) --length;
    name.resize(length);
  }
  for (char& c : name) {
    if (!kept(static_cast<unsigned char>(c))) c = '_';
  }
  if (name.starts_with('.') || name.starts_with('-')) name.front() = '_';
  return name + "-" + digest(path);
}

}  // namespace lm::host::commands::archive
