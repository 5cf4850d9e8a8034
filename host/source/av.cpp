#include "host/source/av.h"

#include <array>
#include <new>

namespace lm::host::source::av {
namespace {

template <typename Owner>
Owner owned(typename Owner::pointer object) {
  if (object == nullptr) throw std::bad_alloc();
  return Owner(object);
}

}  // namespace

Picture new_picture() { return owned<Picture>(av_frame_alloc()); }

Picture new_picture(cv::Size size, AVPixelFormat format) {
  Picture picture = new_picture();
  picture->width = size.width;
  picture->height = size.height;
  picture->format = format;
  if (av_frame_get_buffer(picture.get(), 0) < 0) throw std::bad_alloc();
  return picture;
}

Packet new_packet() { return owned<Packet>(av_packet_alloc()); }

Codec new_codec(const AVCodec* codec) { return owned<Codec>(avcodec_alloc_context3(codec)); }

cv::Mat view(AVFrame& picture) {
  return cv::Mat(picture.height, picture.width, CV_8UC3, picture.data[0],
                 static_cast<std::size_t>(picture.linesize[0]));
}

std::string error_text(int code) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(code, text.data(), text.size());
  return text.data();
}

}  // namespace lm::host::source::av
