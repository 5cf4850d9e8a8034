// Encodes images as PNG or JPEG.
#pragma once

#include <opencv2/core.hpp>
#include <string>

namespace lm::host::outputs::report {

// `image`: 8-bit blue, green, red. Throws Failure (kTrouble) if FFmpeg was built without the encoder.
std::string png_bytes(const cv::Mat& image);

// `coarseness`: from 2 (best quality) to 31.
std::string jpeg_bytes(const cv::Mat& image, int coarseness);

}  // namespace lm::host::outputs::report
