#include "host/outputs/video_writer.h"

#include <algorithm>
#include <cmath>
#include <opencv2/core/mat.hpp>

#include "host/base/failure.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace lm::host::outputs {
namespace {

// H.264 if FFmpeg has an encoder for it, else MPEG-4, whose clock has at most 65535 ticks per second.
source::av::Codec choose_encoder() {
  if (const AVCodec* h264 = avcodec_find_encoder_by_name("libx264")) {
    source::av::Codec encoder = source::av::new_codec(h264);
    encoder->time_base = {1, 90'000};
    av_opt_set(encoder->priv_data, "preset", "veryfast", 0);
    av_opt_set(encoder->priv_data, "crf", "20", 0);
    return encoder;
  }
  source::av::Codec encoder = source::av::new_codec(avcodec_find_encoder(AV_CODEC_ID_MPEG4));
  encoder->time_base = {1, 1000};
  encoder->flags |= AV_CODEC_FLAG_QSCALE;
  encoder->global_quality = 3 * FF_QP2LAMBDA;
  return encoder;
}

// Chroma is stored at half resolution, so both sides must be even.
int even(int side) { return side + side % 2; }

}  // namespace

const char* video_format(const std::string& file) {
  constexpr std::pair<const char*, const char*> kFormats[] = {
      {".mp4", "mp4"}, {".mkv", "matroska"}, {".mov", "mov"}};
  for (const auto& [ending, format] : kFormats) {
    if (file.ends_with(ending)) return format;
  }
  return nullptr;
}

void VideoWriter::CloseOutput::operator()(AVFormatContext* output) const {
  avio_closep(&output->pb);
  avformat_free_context(output);
}

VideoWriter::VideoWriter(const std::string& path, const char* format, const Shape& shape,
                         const std::string& shown_name)
    : shown_name_(shown_name) {
  AVFormatContext* output = nullptr;
  check(avformat_alloc_output_context2(&output, nullptr, format, ("file:" + path).c_str()));
  output_.reset(output);
  open_encoder(shape);
  open_file(shape.fragmented);
  const cv::Size size(encoder_->width, encoder_->height);
  colour_ = source::av::new_picture(size, AV_PIX_FMT_BGR24);
  encoded_ = source::av::new_picture(size, encoder_->pix_fmt);
  scaler_.reset(sws_getContext(size.width, size.height, AV_PIX_FMT_BGR24, size.width, size.height,
                               encoder_->pix_fmt, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_BITEXACT, nullptr,
                               nullptr, nullptr));
  if (!scaler_) check(AVERROR(ENOMEM));
}

VideoWriter::~VideoWriter() = default;

void VideoWriter::open_encoder(const Shape& shape) {
  encoder_ = choose_encoder();
  encoder_->width = even(shape.size.width);
  encoder_->height = even(shape.size.height);
  encoder_->sample_aspect_ratio = {shape.pixel_aspect.width, shape.pixel_aspect.height};
  encoder_->pix_fmt = AV_PIX_FMT_YUV420P;
  encoder_->colorspace = AVCOL_SPC_SMPTE170M;  // the scaler's output
  encoder_->color_range = AVCOL_RANGE_MPEG;
  const double rate = shape.rate > 0 ? shape.rate : 25;
  encoder_->framerate = av_d2q(rate, 100'000);
  if (shape.fragmented) encoder_->gop_size = static_cast<int>(std::ceil(2 * rate));  // a fragment each
  if ((output_->oformat->flags & AVFMT_GLOBALHEADER) != 0) encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  check(avcodec_open2(encoder_.get(), nullptr, nullptr));
}

void VideoWriter::open_file(bool fragmented) {
  stream_ = avformat_new_stream(output_.get(), nullptr);
  if (stream_ == nullptr) check(AVERROR(ENOMEM));
  stream_->time_base = encoder_->time_base;
  stream_->avg_frame_rate = encoder_->framerate;
  stream_->sample_aspect_ratio = encoder_->sample_aspect_ratio;
  check(avcodec_parameters_from_context(stream_->codecpar, encoder_.get()));
  check(avio_open(&output_->pb, output_->url, AVIO_FLAG_WRITE));
  AVDictionary* settings = nullptr;
  // Otherwise the index is at the front, so that browsers can play it at once.
  av_dict_set(&settings, "movflags",
              fragmented ? "+frag_keyframe+empty_moov+default_base_moof" : "+faststart", 0);
  const int result = avformat_write_header(output_.get(), &settings);
  av_dict_free(&settings);
  check(result);
}

void VideoWriter::write(const cv::Mat& image, std::chrono::microseconds time) {
  check(av_frame_make_writable(encoded_.get()));
  cv::Mat even_sides = source::av::view(*colour_);
  cv::copyMakeBorder(image, even_sides, 0, even_sides.rows - image.rows, 0, even_sides.cols - image.cols,
                     cv::BORDER_REPLICATE);
  sws_scale(scaler_.get(), colour_->data, colour_->linesize, 0, colour_->height, encoded_->data,
            encoded_->linesize);
  encoded_->pts =
      std::max(av_rescale_q(time.count(), source::av::kMicroseconds, encoder_->time_base), last_time_ + 1);
  last_time_ = encoded_->pts;
  encode(encoded_.get());
}

void VideoWriter::finish() {
  encode(nullptr);
  check(av_write_trailer(output_.get()));
  check(avio_closep(&output_->pb));
}

// Passes a picture to the encoder, or null at the end, and writes the packets that are ready.
void VideoWriter::encode(const AVFrame* picture) {
  check(avcodec_send_frame(encoder_.get(), picture));
  for (;;) {
    const int result = avcodec_receive_packet(encoder_.get(), packet_.get());
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
    check(result);
    av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream_->time_base);
    check(av_interleaved_write_frame(output_.get(), packet_.get()));
    check(output_->pb->error);
  }
}

void VideoWriter::check(int result) const {
  if (result < 0) {
    throw base::Failure(base::kTrouble,
                        shown_name_ + " cannot be written: " + source::av::error_text(result));
  }
}

}  // namespace lm::host::outputs
