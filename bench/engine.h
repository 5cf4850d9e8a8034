// The engine without the plug-in around it, to time its operations one by one.
#pragma once

#include <memory>
#include <opencv2/core.hpp>

#include "engine/kamble.h"

namespace lm::bench {

// Configured as the plug-in is for the race, before its first frame.
std::unique_ptr<kAMBLE> make_engine(cv::Size frame);

// What the plug-in does ahead of every frame; the result of learnBg_ncv.
bool learn(kAMBLE& engine, const cv::Mat& frame, int number);

}  // namespace lm::bench
