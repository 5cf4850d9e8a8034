// From properties to the configuration of the detector.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

#include "gst/properties.h"

namespace lm::gst {

// What to pass to the library.
struct Configuration {
  std::string text;
  // The same; none when a text that was given is not a JSON object: `text` is that one, and the library says
  // what is wrong with it.
  std::optional<Json::Value> document;
};

// `fileText`: the content of the configuration file; empty if there is none. Keys of Settings::config replace
// those of the file, and properties replace both. Throws BadRegions.
Configuration configurationOf(const Settings& settings, const std::string& fileText);

// The keys of lightmotion_change that turn one configuration into the other.
std::string changesBetween(const Json::Value& from, const Json::Value& to);

}  // namespace lm::gst
