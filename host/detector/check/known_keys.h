// The keys that a configuration document may have, and those that were perhaps meant.
#pragma once

#include <string>
#include <vector>

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings;

// Of the document itself: the plug-in's settings, its lists of regions, and what nothing reads: "comment" and
// an editor's "$schema".
std::vector<std::string> document_keys();

// The one of `known` that differs least from `key`; empty when none is near.
std::string nearest(const std::string& key, const std::vector<std::string>& known);

// Complains of every key of `object` that is none of `known`. `path`: of the object, empty for the document.
void check_keys(const Json::Value& object, const std::string& path, const std::vector<std::string>& known,
                Findings& findings);

}  // namespace lm::host::detector::check
