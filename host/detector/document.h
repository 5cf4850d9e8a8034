// The configuration document.
#pragma once

#include <opencv2/core.hpp>
#include <string>

#include "config/check/json_document.h"

namespace lm::host::detector {

using lm::check::NoDocument;
using lm::check::readDocument;

// A configuration, and what messages call it; without a name, they have none.
struct Document {
  std::string name;
  std::string text;
};

// "night.json: cause".
std::string about(const Document& document, const std::string& cause);

// What runs without a configuration: the preset auto, or street for plug-ins by their entry points, which
// cannot adapt.
Document default_document(const std::string& plugin);
// A preset by its name.
Document preset_document(const std::string& name);

// `text` for a plug-in by its entry points, so that it gives the boxes of a detector by handle: numbers as
// texts, without members that are null. Adds what it omits: "frmW", "frmH" and "frmChn" from the frame size
// (3 channels), and a "roi" that covers the whole frame. `frame`: empty if not known yet; then any stated
// size is accepted, and the default is that of the built-in scene. Throws std::invalid_argument with the
// cause if the text is not a JSON object, states another frame size, adapts or has keys that only detectors
// by handle know.
std::string plugin_document(const std::string& text, cv::Size frame);

}  // namespace lm::host::detector
