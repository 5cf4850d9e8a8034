#include "host/source/picture_converter.h"

namespace lm::host::source {
namespace {

// Passes the picture's colour space and range to the scaler; if not stated, the pixel format determines them.
void state_colours(SwsContext& scaler, const AVFrame& picture) {
  int *from, *to, from_full, to_full, brightness, contrast, saturation;
  if (sws_getColorspaceDetails(&scaler, &from, &from_full, &to, &to_full, &brightness, &contrast,
                               &saturation) < 0) {
    return;
  }
  if (picture.color_range != AVCOL_RANGE_UNSPECIFIED) from_full = picture.color_range == AVCOL_RANGE_JPEG;
  const int* coefficients =
      picture.colorspace == AVCOL_SPC_UNSPECIFIED ? from : sws_getCoefficients(picture.colorspace);
  sws_setColorspaceDetails(&scaler, coefficients, from_full, to, to_full, brightness, contrast, saturation);
}

}  // namespace

PictureConverter::PictureConverter(cv::Size size, int quarter_turns)
    : size_(size), quarter_turns_(quarter_turns), padded_(av::new_picture(size, AV_PIX_FMT_BGR24)) {}

cv::Size PictureConverter::size() const {
  return quarter_turns_ % 2 == 0 ? size_ : cv::Size(size_.height, size_.width);
}

bool PictureConverter::prepare(const AVFrame& picture) {
  const Shape shape{picture.width, picture.height, picture.format, picture.colorspace, picture.color_range};
  if (scaler_ && shape == shape_) return true;
  scaler_.reset(sws_getContext(shape.width, shape.height, static_cast<AVPixelFormat>(shape.format),
                               size_.width, size_.height, AV_PIX_FMT_BGR24, SWS_BILINEAR, nullptr, nullptr,
                               nullptr));
  if (!scaler_) return false;
  shape_ = shape;
  state_colours(*scaler_, picture);
  return true;
}

cv::Mat PictureConverter::convert(const AVFrame& picture) {
  cv::Mat image;
  if (!prepare(picture)) return image;
  sws_scale(scaler_.get(), picture.data, picture.linesize, 0, picture.height, padded_->data,
            padded_->linesize);
  const cv::Mat upright = av::view(*padded_);
  if (quarter_turns_ == 0) {
    upright.copyTo(image);
  } else {
    constexpr int kTurns[] = {cv::ROTATE_90_CLOCKWISE, cv::ROTATE_180, cv::ROTATE_90_COUNTERCLOCKWISE};
    cv::rotate(upright, image, kTurns[quarter_turns_ - 1]);
  }
  return image;
}

}  // namespace lm::host::source
