// Positions of values and keys in a JSON text.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace lm::check {

// From 1; columns count characters. 0 if not in the text.
struct Place {
  int line = 0;
  int column = 0;
};

class Places {
 public:
  // `text`: accepted by read_document (document.h); in other texts, nothing is found after some position.
  explicit Places(const std::string& text);

  // `path`: such as roi[0].points[2].x; for duplicate keys, the last one, which is the one in effect.
  Place ofValue(const std::string& path) const;
  Place ofKey(const std::string& path) const;

  // A key that its object already has.
  struct Repeat {
    std::string path;
    Place place;
    Place before;
  };
  const std::vector<Repeat>& repeats() const { return repeats_; }

 private:
  struct Member {
    std::size_t key;
    std::size_t value;
  };

  char next(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
  void skipBlanks();
  void skipBehind(const char* terminator);
  bool skipOver(char wanted);
  std::string readString();
  void readValue(const std::string& path);
  void readMembers(const std::string& path);
  void readItems(const std::string& path);
  Place place(std::size_t offset) const;

  const std::string& text_;
  const std::size_t begin_;  // after the byte order mark that some editors write
  std::size_t at_;
  std::map<std::string, Member> members_;
  std::vector<Repeat> repeats_;
};

}  // namespace lm::check
