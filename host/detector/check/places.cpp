#include "host/detector/check/places.h"

#include <json/json.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>

namespace lm::host::detector::check {
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
  read_value("");
}

Place Places::of_value(const std::string& path) const {
  const auto found = members_.find(path);
  return found == members_.end() ? Place{} : place(found->second.value);
}

Place Places::of_key(const std::string& path) const {
  const auto found = members_.find(path);
  return found == members_.end() ? Place{} : place(found->second.key);
}

Place Places::place(std::size_t offset) const {
  const auto begin = text_.begin();
  const auto end = begin + static_cast<std::ptrdiff_t>(offset);
  const std::size_t line_end = offset == 0 ? std::string::npos : text_.rfind('\n', offset - 1);
  const std::size_t line_start = line_end == std::string::npos ? begin_ : line_end + 1;
  const auto starts_character = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  const auto before = std::count_if(begin + static_cast<std::ptrdiff_t>(line_start), end, starts_character);
  return {1 + static_cast<int>(std::count(begin, end, '\n')), 1 + static_cast<int>(before)};
}

void Places::skip_behind(const char* terminator) {
  const std::size_t found = text_.find(terminator, at_);
  at_ = found == std::string::npos ? text_.size() : found + std::strlen(terminator);
}

void Places::skip_blanks() {
  while (at_ < text_.size()) {
    if (next() == '/' && next(1) == '/') {
      skip_behind("\n");
    } else if (next() == '/' && next(1) == '*') {
      skip_behind("*/");
    } else if (std::strchr(" \t\r\n", next()) != nullptr) {
      ++at_;
    } else {
      return;
    }
  }
}

bool Places::skip_over(char wanted) {
  skip_blanks();
  if (at_ >= text_.size() || next() != wanted) return false;
  ++at_;
  return true;
}

std::string Places::read_string() {
  const std::size_t begin = at_++;
  while (at_ < text_.size() && next() != '"') at_ += next() == '\\' ? 2 : 1;
  at_ = std::min(at_ + 1, text_.size());
  return decoded(text_.substr(begin, at_ - begin));
}

void Places::read_value(const std::string& path) {
  skip_blanks();
  members_.try_emplace(path, Member{at_, at_}).first->second.value = at_;
  if (next() == '{') {
    read_members(path);
  } else if (next() == '[') {
    read_items(path);
  } else if (next() == '"') {
    read_string();
  } else {
    at_ = std::min(text_.find_first_of(",]}/ \t\r\n", at_), text_.size());
  }
}

void Places::read_members(const std::string& path) {
  std::set<std::string> keys;
  ++at_;
  do {
    skip_blanks();
    if (next() != '"') break;
    const std::size_t start = at_;
    const std::string key = read_string();
    const std::string member = path.empty() ? key : path + '.' + key;
    if (!keys.insert(key).second) repeats_.push_back({member, place(start), of_key(member)});
    members_[member] = {start, start};
    if (!skip_over(':')) break;
    read_value(member);
  } while (skip_over(','));
  skip_over('}');
}

void Places::read_items(const std::string& path) {
  ++at_;
  std::size_t index = 0;
  do {
    skip_blanks();
    if (next() == ']' || at_ >= text_.size()) break;
    read_value(path + '[' + std::to_string(index++) + ']');
  } while (skip_over(','));
  skip_over(']');
}

}  // namespace lm::host::detector::check
