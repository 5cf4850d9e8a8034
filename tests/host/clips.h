// Videos for tests, written with the program's writer and read with its reader.
#pragma once

#include <chrono>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "host/source/source.h"

namespace clips {

using Times = std::vector<std::chrono::microseconds>;

// `count` frame times from 0, `interval` apart.
Times regular(int count, std::chrono::microseconds interval);

// A bright square on grey that moves right by one step per frame.
cv::Mat picture(cv::Size size, int number);

// One picture per time.
void write(const std::string& file, cv::Size size, const Times& times);
void write(const std::string& file, const std::vector<cv::Mat>& images, const Times& times);

// Pictures of noise, 40 ms apart, which compress badly.
void write_busy(const std::string& file, cv::Size size, int count);

// All frames up to the end or an error.
std::vector<lm::host::source::Frame> read(lm::host::source::Source& source);
std::vector<lm::host::source::Frame> read(const std::string& file);
// The picture in an image file, which the program does not accept as a source.
cv::Mat still(const std::string& file);

Times times_of(const std::vector<lm::host::source::Frame>& frames);

// A still image as JPEG; several in a row form a simple video stream without timestamps.
std::string jpeg(const cv::Mat& image);

}  // namespace clips
