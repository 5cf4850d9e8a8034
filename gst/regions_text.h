// The property `regions`: regions in one line, for command lines.
#pragma once

#include <json/value.h>

#include <stdexcept>
#include <string>

namespace lm::gst {

class BadRegions : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// "door: 0.1,0.2 0.4,0.2 0.4,0.9; !tree: ...": names, which may be left out with their colon, and points; !
// marks an excluded region. Replaces the keys roi and ror of `document`; without included regions there is no
// roi. Coordinates stay texts, for the library to judge. Throws BadRegions.
void setRegions(Json::Value& document, const std::string& text);

}  // namespace lm::gst
