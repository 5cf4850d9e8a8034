// The engine without the plug-in, to time its single operations.
#pragma once

#include <memory>
#include <opencv2/core.hpp>

#include "engine/kamble.h"

namespace lm::bench {

// Configured like the plug-in in the comparison, before its first frame.
std::unique_ptr<kAMBLE> make_engine(cv::Size frame);

// The plug-in's steps before the objects of a frame; returns the result of learnBg_ncv.
bool learn(kAMBLE& engine, const cv::Mat& frame, int number);

}  // namespace lm::bench
