// Collects the findings on a document, with their positions in the text.
#pragma once

#include <string>
#include <vector>

#include "host/detector/check/check.h"
#include "host/detector/check/places.h"

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings {
 public:
  explicit Findings(const std::string& text) : places_(text) {}

  // On a value, or on a key itself. `path`: such as roi[0].name; empty for the document as a whole.
  void add(Severity severity, const std::string& path, const std::string& text, const std::string& hint = "");
  void add_to_key(Severity severity, const std::string& path, const std::string& text,
                  const std::string& hint = "");

  // Reports duplicate keys.
  void add_repeats();
  bool any_error() const;
  std::vector<Finding> in_order() const;  // of the text

 private:
  void add(Severity severity, const std::string& path, Place place, const std::string& text,
           const std::string& hint);

  Places places_;
  std::vector<Finding> all_;
};

// A value for use in a message: as JSON, without line feeds, truncated if long.
std::string shown(const Json::Value& value);

// A number without insignificant digits.
std::string shown(double number);

}  // namespace lm::host::detector::check
