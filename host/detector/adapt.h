// The key "adapt" of the configuration, which only the program reads: it chooses what the configuration
// leaves out.
#pragma once

#include <json/json.h>

#include <opencv2/core.hpp>
#include <string>

#include "host/source/live/scale.h"

namespace lm::host::detector {

// Whether "adapt" is true. Never for a text that is not a JSON object, which is refused elsewhere.
bool adapts(const std::string& text);
bool adapts(const Json::Value& document);

// Whether a document has the key, with a value other than null.
bool sets(const Json::Value& document, const std::string& key);

// The document with all settings, for the start of a detector that adapts: what it leaves out is that of the
// preset auto; sensitivity and peeling are those from which the choice begins.
Json::Value completed(Json::Value document);

// The size in which frames of the source are analysed: that of --scale; otherwise chosen, if the document
// adapts and states neither width nor height; otherwise that of the source.
cv::Size analysed_size(const std::string& text, cv::Size source, const source::live::Scale& scale);

}  // namespace lm::host::detector
