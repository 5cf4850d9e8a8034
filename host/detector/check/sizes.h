// The frame's size in a configuration document.
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

// The settings that state it.
struct Sizes {
  std::int32_t frmW = 0;
  std::int32_t frmH = 0;
  std::int32_t frmChn = 0;
};

struct SettledSizes {
  std::optional<cv::Size> frame;             // that the plug-in will work with, as far as it is known
  std::map<std::string, std::string> texts;  // of each setting, as the program hands it to the plug-in
};

// Complains of sizes that no frames have, or other ones than the source's. `frame`: the source's, if there is
// a source.
SettledSizes check_sizes(const Json::Value& document, std::optional<cv::Size> frame, Findings& findings);

}  // namespace lm::host::detector::check
