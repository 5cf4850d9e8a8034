// The configuration document: completes what the user wrote for the plug-in.
#pragma once

#include <opencv2/core.hpp>
#include <string>

#include "config/check/json_document.h"

namespace lm::host::detector {

using lm::check::NoDocument;
using lm::check::readDocument;

// The document used without --config.
std::string default_document();

// Adds the keys that `text` omits: "frmW", "frmH" and "frmChn" from the frame size (3 channels), and a "roi"
// that covers the whole frame. Everything else is unchanged. `frame`: empty if not known yet; then any stated
// size is accepted, and the default is that of the built-in scene. Throws std::invalid_argument with the
// cause if the text is not a JSON object or states another frame size.
std::string complete_document(const std::string& text, cv::Size frame);

}  // namespace lm::host::detector
