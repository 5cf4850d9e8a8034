// Reading a configuration document, strictly and with the position of what is wrong.
#pragma once

#include <stdexcept>
#include <string>

namespace Json {
class Value;
}

namespace lm::check {

// Why a text is not a configuration document, with the line and column, from 1, if known.
class NoDocument : public std::invalid_argument {
 public:
  explicit NoDocument(const std::string& cause) : std::invalid_argument(cause), cause_(cause) {}
  NoDocument(int line, int column, const std::string& cause);

  int line() const { return line_; }
  int column() const { return column_; }
  const std::string& cause() const { return cause_; }  // what() includes the position

 private:
  int line_ = 0;
  int column_ = 0;
  std::string cause_;
};

// The text as a JSON object; comments are allowed. Throws NoDocument.
Json::Value readDocument(const std::string& text);

// The same, whatever the process has made of C++'s locale. The values' offsets are not those of the text.
Json::Value readDocumentInAnyLocale(const std::string& text);

}  // namespace lm::check
