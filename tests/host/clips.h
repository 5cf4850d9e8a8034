// Videos for the tests, made with the program's own writer and read with its own reader.
#pragma once

#include <chrono>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "host/source/source.h"

namespace clips {

using Times = std::vector<std::chrono::microseconds>;

// `count` frames, the first at 0, `interval` apart.
Times regular(int count, std::chrono::microseconds interval);

// A bright square that moves a step to the right with each frame, on grey.
cv::Mat picture(cv::Size size, int number);

// One picture for each time.
void write(const std::string& file, cv::Size size, const Times& times);
void write(const std::string& file, const std::vector<cv::Mat>& images, const Times& times);

// Pictures full of noise, 40 ms apart, so that each one takes room in the file.
void write_busy(const std::string& file, cv::Size size, int count);

// Whatever can be read.
std::vector<lm::host::source::Frame> read(lm::host::source::Source& source);
std::vector<lm::host::source::Frame> read(const std::string& file);
// The picture in a file, which is no source by itself.
cv::Mat still(const std::string& file);

Times times_of(const std::vector<lm::host::source::Frame>& frames);

// A still image as JPEG bytes; written one after another they are a video of the plainest kind, without
// times.
std::string jpeg(const cv::Mat& image);

}  // namespace clips
