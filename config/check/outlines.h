// The regions of a configuration document as written.
#pragma once

#include <string>
#include <vector>

namespace Json {
class Value;
}

namespace lm::check {

class Findings;

struct Corner {
  float x;
  float y;
};

struct Outline {
  std::string path;  // such as roi[0]
  std::string name;  // for messages
  std::vector<Corner> corners{};
};

struct Outlines {
  bool wholeFrame = false;  // no regions in the document: the program adds one
  std::vector<Outline> included{};
  std::vector<Outline> excluded{};
};

// Reports what the plug-in cannot read, and values that it reads differently than they look.
Outlines readOutlines(const Json::Value& document, Findings& findings);

}  // namespace lm::check
