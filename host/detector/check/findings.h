// Collects what is found in a document, with its place in the text.
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

  // About a value, or about a key itself. `path`: such as roi[0].name; empty for the document as a whole.
  void add(Severity severity, const std::string& path, const std::string& text, const std::string& hint = "");
  void add_to_key(Severity severity, const std::string& path, const std::string& text,
                  const std::string& hint = "");

  // Keys that stand twice.
  void add_repeats();
  bool any_error() const;
  std::vector<Finding> in_order() const;  // of the text

 private:
  void add(Severity severity, const std::string& path, Place place, const std::string& text,
           const std::string& hint);

  Places places_;
  std::vector<Finding> all_;
};

// A value as it may stand in a finding: as JSON, without line feeds, cut off where it is long.
std::string shown(const Json::Value& value);

// A number without digits that say nothing.
std::string shown(double number);

}  // namespace lm::host::detector::check
