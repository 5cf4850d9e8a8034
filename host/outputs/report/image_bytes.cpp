#include "host/outputs/report/image_bytes.h"

#include "host/base/failure.h"
#include "host/source/av.h"

namespace lm::host::outputs::report {
namespace {

void require_success(int result) {
  if (result < 0)
    throw base::Failure(base::kTrouble, "cannot encode a picture: " + source::av::error_text(result));
}

source::av::Picture converted(const cv::Mat& image, AVPixelFormat format) {
  source::av::Picture picture = source::av::new_picture(image.size(), format);
  const source::av::Scaler scaler(
      sws_getContext(image.cols, image.rows, AV_PIX_FMT_BGR24, image.cols, image.rows, format,
                     SWS_BILINEAR | SWS_ACCURATE_RND | SWS_BITEXACT, nullptr, nullptr, nullptr));
  if (!scaler) require_success(AVERROR(ENOMEM));
  // The scaler reads whole vectors, beyond the end of packed rows.
  const source::av::Picture padded = source::av::new_picture(image.size(), AV_PIX_FMT_BGR24);
  image.copyTo(source::av::view(*padded));
  sws_scale(scaler.get(), padded->data, padded->linesize, 0, image.rows, picture->data, picture->linesize);
  return picture;
}

std::string encoded(const cv::Mat& image, AVCodecID id, AVPixelFormat format, int coarseness) {
  const AVCodec* codec = avcodec_find_encoder(id);
  if (codec == nullptr) require_success(AVERROR_ENCODER_NOT_FOUND);
  const source::av::Codec encoder = source::av::new_codec(codec);
  encoder->width = image.cols;
  encoder->height = image.rows;
  encoder->pix_fmt = format;
  encoder->time_base = {1, 25};  // required by encoders
  if (coarseness > 0) {
    encoder->flags |= AV_CODEC_FLAG_QSCALE;
    encoder->global_quality = coarseness * FF_QP2LAMBDA;
  }
  require_success(avcodec_open2(encoder.get(), nullptr, nullptr));
  const source::av::Picture picture = converted(image, format);
  picture->pts = 0;
  picture->quality = encoder->global_quality;
  const source::av::Packet packet = source::av::new_packet();
  require_success(avcodec_send_frame(encoder.get(), picture.get()));
  require_success(avcodec_send_frame(encoder.get(), nullptr));
  require_success(avcodec_receive_packet(encoder.get(), packet.get()));
  return {reinterpret_cast<const char*>(packet->data), static_cast<std::size_t>(packet->size)};
}

}  // namespace

std::string png_bytes(const cv::Mat& image) { return encoded(image, AV_CODEC_ID_PNG, AV_PIX_FMT_RGB24, 0); }

std::string jpeg_bytes(const cv::Mat& image, int coarseness) {
  return encoded(image, AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P, coarseness);
}

}  // namespace lm::host::outputs::report
