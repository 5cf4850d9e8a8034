// Owning types for FFmpeg's objects.
#pragma once

#include <cstdint>
#include <memory>
#include <opencv2/core.hpp>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace lm::host::source::av {

template <auto free_object>
struct Free {
  template <typename T>
  void operator()(T* object) const {
    free_object(&object);
  }
};

struct FreeScaler {
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

using Input = std::unique_ptr<AVFormatContext, Free<avformat_close_input>>;
using Codec = std::unique_ptr<AVCodecContext, Free<avcodec_free_context>>;
using Picture = std::unique_ptr<AVFrame, Free<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, Free<av_packet_free>>;
using Scaler = std::unique_ptr<SwsContext, FreeScaler>;

// The unit of frame times.
inline constexpr AVRational kMicroseconds{1, 1'000'000};

// Each throws std::bad_alloc instead of returning null.
Picture new_picture();
Picture new_picture(cv::Size size, AVPixelFormat format);  // with its own pixels, rows padded for vector code
Packet new_packet();
Codec new_codec(const AVCodec* codec);

// The pixels of a picture as blue, green, red; valid as long as the picture.
cv::Mat view(AVFrame& picture);

bool is_key(const AVFrame& picture);

// Whether all pixels are the same, as they were decoded.
bool are_same(const AVFrame& a, const AVFrame& b);

// The rotation that the file asks for (see av_display_rotation_get), or null.
const std::uint8_t* display_matrix(const AVStream& stream);

// Copies what a stream says beside its packets (rotation, colours of the screen that it was made on, ...) to
// a stream that has its codec parameters already.
void copy_side_data(const AVStream& from, AVStream& to);

// "No such file or directory", "Invalid data found when processing input", ...
std::string error_text(int code);

}  // namespace lm::host::source::av
