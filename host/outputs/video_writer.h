// Writes frames to a video file, each with its own timestamp.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>

#include "host/source/av.h"

namespace lm::host::outputs {

// The container for the file's extension ("mp4", "matroska", "mov"); null for other extensions. These
// containers store a timestamp per frame.
const char* video_format(const std::string& file);

class VideoWriter {
 public:
  struct Shape {
    cv::Size size;
    cv::Size pixel_aspect{1, 1};
    double rate = 0;          // frames per second, only a hint for the encoder; 0 if unknown
    bool fragmented = false;  // what is written plays even if the file is never completed
  };

  // `format`: from video_format. Throws Failure (kTrouble) naming `shown_name`, as do all operations.
  VideoWriter(const std::string& path, const char* format, const Shape& shape, const std::string& shown_name);
  ~VideoWriter();

  // `image`: 8-bit blue, green, red, of the stated size. `time`: later than the previous frame.
  void write(const cv::Mat& image, std::chrono::microseconds time);

  // Completes the file.
  void finish();

 private:
  struct CloseOutput {
    void operator()(AVFormatContext* output) const;
  };
  void open_encoder(const Shape& shape);
  void open_file(bool fragmented);
  void encode(const AVFrame* picture);
  void check(int result) const;

  std::string shown_name_;
  std::unique_ptr<AVFormatContext, CloseOutput> output_;
  AVStream* stream_ = nullptr;  // part of output_
  source::av::Codec encoder_;
  source::av::Scaler scaler_;
  source::av::Picture colour_;   // the image, with even sides
  source::av::Picture encoded_;  // the same in the encoder's pixel format
  source::av::Packet packet_ = source::av::new_packet();
  std::int64_t last_time_ = -1;  // in the encoder's time base
};

}  // namespace lm::host::outputs
