// What is wrong, or probably not meant, in a configuration document.
#pragma once

#include <string>

namespace lm::check {

enum class Severity {
  note,     // valid, and may be intended
  warning,  // valid, but probably not intended
  error,    // refused, or nothing can ever be found
};

struct Finding {
  Severity severity = Severity::note;
  std::string key;   // path of the key, such as roi[0].points[2].x; empty for the document as a whole
  int line = 0;      // in the text, from 1; 0 if the text does not contain it
  int column = 0;    // in characters, from 1; 0 if the text does not contain it
  std::string text;  // what is wrong, naming the value
  std::string hint;  // what would be valid; may be empty
};

// Without its position: "key": text (hint).
std::string message(const Finding& finding);

}  // namespace lm::check
