// What comes of all settings together at the frames' size.
#pragma once

#include <opencv2/core.hpp>
#include <optional>

#include "config/settings.h"
#include "host/detector/check/check.h"
#include "host/detector/check/coverage.h"

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings;

// `regions`: how many there are of both kinds; each has a mask of its own.
Effective in_effect(const Settings& settings, std::optional<cv::Size> frame, std::size_t regions);

// Complains of a least box that drops nothing, or everything.
void check_least_box(const Json::Value& document, const Effective& effective,
                     const std::optional<Coverage>& coverage, Findings& findings);

// Complains of frames for which this computer has no room.
void check_memory(const Effective& effective, std::uint64_t installed, Findings& findings);

// Bytes of this computer's memory; 0 when it does not tell.
std::uint64_t installed_memory();

// Such as 612 MB.
std::string memory_text(std::uint64_t bytes);

}  // namespace lm::host::detector::check
