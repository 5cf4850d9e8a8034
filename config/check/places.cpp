#include "config/check/places.h"

#include <json/json.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>

namespace lm::check {
namespace {

// Decodes a JSON string literal, quotation marks included.
std::string decoded(const std::string& literal) {
  Json::Value value;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  const bool read = reader->parse(literal.data(), literal.data() + literal.size(), &value, nullptr);
  return read && value.isString() ? value.asString() : literal;
}

}  // namespace

Places::Places(const std::string& text)
    : text_(text), begin_(text.starts_with("\xEF\xBB\xBF") ? 3 : 0), at_(begin_) {
  readValue("");
}

Place Places::ofValue(const std::string& path) const {
  const auto found = members_.find(path);
  return found == members_.end() ? Place{} : place(found->second.value);
}

Place Places::ofKey(const std::string& path) const {
  const auto found = members_.find(path);
  return found == members_.end() ? Place{} : place(found->second.key);
}

Place Places::place(std::size_t offset) const {
  const auto begin = text_.begin();
  const auto end = begin + static_cast<std::ptrdiff_t>(offset);
  const std::size_t lineEnd = offset == 0 ? std::string::npos : text_.rfind('\n', offset - 1);
  const std::size_t lineStart = lineEnd == std::string::npos ? begin_ : lineEnd + 1;
  const auto startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  const auto before = std::count_if(begin + static_cast<std::ptrdiff_t>(lineStart), end, startsCharacter);
  return {1 + static_cast<int>(std::count(begin, end, '\n')), 1 + static_cast<int>(before)};
}

void Places::skipBehind(const char* terminator) {
  const std::size_t found = text_.find(terminator, at_);
  at_ = found == std::string::npos ? text_.size() : found + std::strlen(terminator);
}

void Places::skipBlanks() {
  while (at_ < text_.size()) {
    if (next() == '/' && next(1) == '/') {
      skipBehind("\n");
    } else if (next() == '/' && next(1) == '*') {
      skipBehind("*/");
    } else if (std::strchr(" \t\r\n", next()) != nullptr) {
      ++at_;
    } else {
      return;
    }
  }
}

bool Places::skipOver(char wanted) {
  skipBlanks();
  if (at_ >= text_.size() || next() != wanted) return false;
  ++at_;
  return true;
}

std::string Places::readString() {
  const std::size_t begin = at_++;
  while (at_ < text_.size() && next() != '"') at_ += next() == '\\' ? 2 : 1;
  at_ = std::min(at_ + 1, text_.size());
  return decoded(text_.substr(begin, at_ - begin));
}

void Places::readValue(const std::string& path) {
  skipBlanks();
  members_.try_emplace(path, Member{at_, at_}).first->second.value = at_;
  if (next() == '{') {
    readMembers(path);
  } else if (next() == '[') {
    readItems(path);
  } else if (next() == '"') {
    readString();
  } else {
    at_ = std::min(text_.find_first_of(",]}/ \t\r\n", at_), text_.size());
  }
}

void Places::readMembers(const std::string& path) {
  std::set<std::string> keys;
  ++at_;
  do {
    skipBlanks();
    if (next() != '"') break;
    const std::size_t start = at_;
    const std::string key = readString();
    const std::string member = path.empty() ? key : path + '.' + key;
    if (!keys.insert(key).second) repeats_.push_back({member, place(start), ofKey(member)});
    members_[member] = {start, start};
    if (!skipOver(':')) break;
    readValue(member);
  } while (skipOver(','));
  skipOver('}');
}

void Places::readItems(const std::string& path) {
  ++at_;
  std::size_t index = 0;
  do {
    skipBlanks();
    if (next() == ']' || at_ >= text_.size()) break;
    readValue(path + '[' + std::to_string(index++) + ']');
  } while (skipOver(','));
  skipOver(']');
}

}  // namespace lm::check
