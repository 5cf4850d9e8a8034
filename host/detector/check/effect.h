// The combined effect of all settings at the frame size.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

#include "config/check/findings.h"
#include "config/handle_document.h"
#include "config/settings.h"
#include "host/detector/check/check.h"

namespace lm::host::detector::check {

using lm::check::Findings;

// Of a plug-in. `regions`: the number of regions of both kinds; each has its own mask.
Effective in_effect(const Settings& settings, std::optional<cv::Size> frame, std::size_t regions);
// Of a detector by handle.
Effective in_effect(const HandleConfiguration& configuration);

// Reports frames that need more memory than this computer has.
void check_memory(const Effective& effective, std::uint64_t installed, Findings& findings);

// Bytes of this computer's memory; 0 if unknown.
std::uint64_t installed_memory();

// For example "612 MB".
std::string memory_text(std::uint64_t bytes);

}  // namespace lm::host::detector::check
