// The configuration document: from what the user wrote to what the plug-in is given.
#pragma once

#include <opencv2/core.hpp>
#include <string>

namespace lm::host {

// What runs without --config.
std::string default_document();

// Adds to `text` what it leaves out: "frmW", "frmH" and "frmChn" from the frames' size (3 channels), and a
// "roi" that covers the whole frame. Everything else stays as it is. Throws std::invalid_argument, naming the
// cause, when the text is not a JSON object or states other frame sizes.
std::string complete_document(const std::string& text, cv::Size frame);

}  // namespace lm::host
