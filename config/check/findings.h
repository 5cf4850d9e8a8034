// Collects the findings on a document, with their positions in the text.
#pragma once

#include <string>
#include <vector>

#include "config/check/finding.h"
#include "config/check/places.h"

namespace Json {
class Value;
}

namespace lm::check {

// Who reads the document.
enum class Reader {
  plugin,  // the entry points: texts only
  handle,  // lightmotion.h: numbers too, and keys of its own
};

class Findings {
 public:
  explicit Findings(const std::string& text, Reader reader = Reader::plugin)
      : places_(text), reader_(reader) {}

  Reader reader() const { return reader_; }
  std::string who() const { return reader_ == Reader::plugin ? "the plug-in" : "the detector"; }

  // Whether the reader takes the value for a number.
  bool reads(const Json::Value& value) const;

  // On a value, or on a key itself. `path`: such as roi[0].name; empty for the document as a whole.
  void add(Severity severity, const std::string& path, const std::string& text, const std::string& hint = "");
  void addToKey(Severity severity, const std::string& path, const std::string& text,
                const std::string& hint = "");

  // Reports duplicate keys.
  void addRepeats();
  bool anyError() const;
  std::vector<Finding> inOrder() const;  // of the text

 private:
  void add(Severity severity, const std::string& path, Place place, const std::string& text,
           const std::string& hint);

  Places places_;
  Reader reader_;
  std::vector<Finding> all_;
};

// A value for use in a message: as JSON, without line feeds, truncated if long.
std::string shown(const Json::Value& value);

// What is read of a value that the reader takes for a number: whole numbers without a decimal point.
std::string numberText(const Json::Value& value);

// A number without insignificant digits.
std::string shown(double number);

}  // namespace lm::check
