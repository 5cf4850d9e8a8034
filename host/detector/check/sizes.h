// The frame size in a configuration document.
#pragma once

#include <cstdint>
#include <map>
#include <opencv2/core.hpp>
#include <optional>
#include <string>

namespace Json {
class Value;
}

namespace lm::host::detector::check {

class Findings;

// The settings that state the frame size.
struct Sizes {
  std::int32_t frmW = 0;
  std::int32_t frmH = 0;
  std::int32_t frmChn = 0;
};

struct SettledSizes {
  std::optional<cv::Size> frame;             // that the plug-in will use, if known
  std::map<std::string, std::string> texts;  // of each setting, as the program passes it to the plug-in
};

// Reports invalid frame sizes, and sizes other than the source's. `frame`: the source's, if there is a
// source.
SettledSizes check_sizes(const Json::Value& document, std::optional<cv::Size> frame, Findings& findings);

}  // namespace lm::host::detector::check
