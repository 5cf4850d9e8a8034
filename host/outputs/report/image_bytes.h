// Pictures as the bytes of a PNG or JPEG file.
#pragma once

#include <opencv2/core.hpp>
#include <string>

namespace lm::host::outputs::report {

// `image`: 8-bit blue, green, red. Throw Failure (kTrouble) when FFmpeg was built without the encoder.
std::string png_bytes(const cv::Mat& image);

// `coarseness`: 2 for hardly any loss up to 31.
std::string jpeg_bytes(const cv::Mat& image, int coarseness);

}  // namespace lm::host::outputs::report
