#include "host/source/av.h"

#include <array>
#include <cstring>
#include <new>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

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

bool is_key(const AVFrame& picture) {
#ifdef AV_FRAME_FLAG_KEY
  return (picture.flags & AV_FRAME_FLAG_KEY) != 0;
#else
  return picture.key_frame != 0;
#endif
}

bool are_same(const AVFrame& a, const AVFrame& b) {
  const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(a.format));
  if (format == nullptr || a.format != b.format || a.width != b.width || a.height != b.height) return false;
  int widths[4];
  if (av_image_fill_linesizes(widths, static_cast<AVPixelFormat>(a.format), a.width) < 0) return false;
  for (int plane = 0; plane < av_pix_fmt_count_planes(static_cast<AVPixelFormat>(a.format)); ++plane) {
    const bool chroma = plane == 1 || plane == 2;
    const int rows = AV_CEIL_RSHIFT(a.height, chroma ? format->log2_chroma_h : 0);
    for (int row = 0; row < rows; ++row) {
      const std::uint8_t* const left = a.data[plane] + std::ptrdiff_t(row) * a.linesize[plane];
      const std::uint8_t* const right = b.data[plane] + std::ptrdiff_t(row) * b.linesize[plane];
      if (std::memcmp(left, right, static_cast<std::size_t>(widths[plane])) != 0) return false;
    }
  }
  return true;
}

// Since FFmpeg 6.1 side data belongs to the codec parameters and is copied with them.
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 0)

const std::uint8_t* display_matrix(const AVStream& stream) {
  const AVCodecParameters& codec = *stream.codecpar;
  const AVPacketSideData* const data =
      av_packet_side_data_get(codec.coded_side_data, codec.nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
  return data == nullptr ? nullptr : data->data;
}

void copy_side_data(const AVStream& /*from*/, AVStream& /*to*/) {}

#else

const std::uint8_t* display_matrix(const AVStream& stream) {
  return av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
}

void copy_side_data(const AVStream& from, AVStream& to) {
  for (int i = 0; i < from.nb_side_data; ++i) {
    const AVPacketSideData& data = from.side_data[i];
    std::uint8_t* const copy = av_stream_new_side_data(&to, data.type, data.size);
    if (copy != nullptr) std::memcpy(copy, data.data, data.size);
  }
}

#endif

std::string error_text(int code) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(code, text.data(), text.size());
  return text.data();
}

}  // namespace lm::host::source::av
