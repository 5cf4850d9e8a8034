// The valid keys of a configuration document, and suggestions for misspelt ones.
#pragma once

#include <string>
#include <vector>

#include "config/check/findings.h"

namespace Json {
class Value;
}

namespace lm::check {

// Of the document itself: the plug-in's settings, its lists of regions, "lines" and "adapt", which only the
// program reads, and two keys that nothing reads, "comment" and an editor's "$schema". For handles also those
// of handleKeys.
std::vector<std::string> documentKeys(Reader reader = Reader::plugin);

// The keys that only handles know.
inline constexpr const char* handleKeys[] = {"format", "absorb_seconds", "extent", "peel", "join_gap"};

// The one of `known` that is most similar to `key`; empty if none is similar.
std::string nearest(const std::string& key, const std::vector<std::string>& known);

// Reports every key of `object` that is not in `known`. `path`: of the object, empty for the document.
void checkKeys(const Json::Value& object, const std::string& path, const std::vector<std::string>& known,
               Findings& findings);

}  // namespace lm::check
