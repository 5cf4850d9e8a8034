#include "tests/host/clips.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "host/outputs/video_writer.h"
#include "host/source/av.h"
#include "tests/host/program.h"

namespace clips {

using lm::host::outputs::VideoWriter;
using lm::host::source::Frame;
namespace av = lm::host::source::av;

[[maybe_unused]] const bool quiet = [] {
  av_log_set_level(AV_LOG_QUIET);
  return true;
}();

Times regular(int count, std::chrono::microseconds interval) {
  Times times;
  for (int i = 0; i < count; ++i) times.push_back(i * interval);
  return times;
}

cv::Mat picture(cv::Size size, int number) {
  cv::Mat image(size, CV_8UC3, cv::Scalar(90, 90, 90));
  const int side = std::max(1, std::min(size.width, size.height) / 4);
  const cv::Rect square((2 * number) % size.width, side, side, side);
  image(square & cv::Rect({0, 0}, size)) = cv::Scalar(40, 220, 240);
  return image;
}

void write(const std::string& file, const std::vector<cv::Mat>& images, const Times& times) {
  VideoWriter::Shape shape;
  shape.size = images.front().size();
  VideoWriter video(file, lm::host::outputs::video_format(file), shape, file);
  for (std::size_t i = 0; i < times.size(); ++i) video.write(images[i], times[i]);
  video.finish();
}

void write(const std::string& file, cv::Size size, const Times& times) {
  std::vector<cv::Mat> images;
  for (std::size_t i = 0; i < times.size(); ++i) images.push_back(picture(size, static_cast<int>(i)));
  write(file, images, times);
}

void write_busy(const std::string& file, cv::Size size, int count) {
  std::vector<cv::Mat> images;
  cv::RNG random(7);
  for (int i = 0; i < count; ++i) {
    cv::Mat noise(size, CV_8UC3);
    random.fill(noise, cv::RNG::UNIFORM, 0, 60);
    images.push_back(picture(size, i) + noise);
  }
  write(file, images, regular(count, std::chrono::milliseconds(40)));
}

std::vector<Frame> read(lm::host::source::Source& source) {
  std::vector<Frame> frames;
  for (Frame frame; source.next(frame);) frames.push_back(frame);
  return frames;
}

std::vector<Frame> read(const std::string& file) { return read(*lm::host::source::open_source(file)); }

cv::Mat still(const std::string& file) {
  const program::Folder folder;
  const std::string ending = std::filesystem::path(file).extension();
  for (const char* name : {"1", "2"}) std::filesystem::copy_file(file, folder / (name + ending));
  return read(folder / ("%d" + ending)).at(0).image;
}

Times times_of(const std::vector<Frame>& frames) {
  Times times;
  for (const Frame& frame : frames) times.push_back(frame.time);
  return times;
}

std::string jpeg(const cv::Mat& image) {
  const lm::host::source::av::Codec encoder =
      lm::host::source::av::new_codec(avcodec_find_encoder(AV_CODEC_ID_MJPEG));
  encoder->width = image.cols;
  encoder->height = image.rows;
  encoder->pix_fmt = AV_PIX_FMT_YUVJ420P;
  encoder->time_base = {1, 25};
  const lm::host::source::av::Picture picture =
      lm::host::source::av::new_picture(image.size(), encoder->pix_fmt);
  const lm::host::source::av::Scaler scaler(sws_getContext(image.cols, image.rows, AV_PIX_FMT_BGR24,
                                                           image.cols, image.rows, encoder->pix_fmt,
                                                           SWS_BILINEAR, nullptr, nullptr, nullptr));
  const std::uint8_t* rows[] = {image.data, nullptr, nullptr, nullptr};
  const int strides[] = {static_cast<int>(image.step[0]), 0, 0, 0};
  sws_scale(scaler.get(), rows, strides, 0, image.rows, picture->data, picture->linesize);
  picture->pts = 0;
  const lm::host::source::av::Packet packet = lm::host::source::av::new_packet();
  if (avcodec_open2(encoder.get(), nullptr, nullptr) < 0 ||
      avcodec_send_frame(encoder.get(), picture.get()) < 0 ||
      avcodec_receive_packet(encoder.get(), packet.get()) < 0) {
    throw std::runtime_error("no JPEG encoder");
  }
  return {reinterpret_cast<const char*>(packet->data), static_cast<std::size_t>(packet->size)};
}

}  // namespace clips
