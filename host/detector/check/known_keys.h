// The valid keys of a configuration document, and suggestions for misspelt ones.
#pragma once

#include <string>
#include <vector>

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings;

// Of the document itself: the plug-in's settings, its lists of regions, and two keys that nothing reads,
// "comment" and an editor's "$schema".
std::vector<std::string> document_keys();

// The one of `known` that is most similar to `key`; empty if none is similar.
std::string nearest(const std::string& key, const std::vector<std::string>& known);

// Reports every key of `object` that is not in `known`. `path`: of the object, empty for the document.
void check_keys(const Json::Value& object, const std::string& path, const std::vector<std::string>& known,
                Findings& findings);

}  // namespace lm::host::detector::check
