// lightmotion for programs that use OpenCV, header only: a detector in the shape of OpenCV's background
// subtractors, with boxes.
//
//     lightmotion::BackgroundSubtractor detector;
//     for (cv::Mat frame, mask; video.read(frame);) {
//       detector.apply(frame, mask);
//       for (const cv::Rect& box : detector.boxes()) cv::rectangle(frame, box, {0, 255, 0});
//     }
//
// Needs opencv_core and lightmotion at link time. Threads and memory: see lightmotion.h.
#ifndef LIGHTMOTION_OPENCV_HPP
#define LIGHTMOTION_OPENCV_HPP

#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/video/background_segm.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lightmotion/lightmotion.hpp"

namespace lightmotion {

class BackgroundSubtractor : public cv::BackgroundSubtractor {
 public:
  // `configuration`: see lightmotion.h; without frmW, frmH and format, which the frames give. It is read with
  // the first frame. `frames_per_second`, above 0: of the frames that are passed without a time.
  explicit BackgroundSubtractor(std::string configuration = "{}", double frames_per_second = 25)
      : configuration_(std::move(configuration)), interval_ms_(1000 / frames_per_second) {
    if (!(frames_per_second > 0)) CV_Error(cv::Error::StsOutOfRange, "frames_per_second must be above 0");
  }

  // Processes a frame of CV_8UC1 (grey), CV_8UC3 (blue, green, red) or CV_8UC4 (the fourth is ignored).
  // `mask`, which may be cv::noArray(), becomes CV_8UC1: 255 where a pixel differs from the background. A
  // frame of another size or type begins anew. `learning_rate` has no effect: what is learned, and how fast,
  // is part of the configuration.
  //
  // Throws Error for a configuration that is refused, cv::Exception for a frame that cannot be used.
  void apply(cv::InputArray image, cv::OutputArray mask, double learning_rate = -1) override {
    static_cast<void>(learning_rate);
    apply_at(std::llround(static_cast<double>(count_) * interval_ms_), image, mask);
  }

  // The same with the time of the frame in milliseconds, for frames at irregular times.
  void apply_at(std::int64_t timestamp_ms, cv::InputArray image, cv::OutputArray mask = cv::noArray()) {
    const cv::Mat frame = image.getMat();
    Detector& detector = detector_for(frame);
    boxes_.clear();
    for (const lightmotion_box& box : detector.process(frame.data, frame.step[0], timestamp_ms)) {
      boxes_.emplace_back(box.x, box.y, box.width, box.height);
    }
    ++count_;
    if (mask.needed()) copy(mask, CV_8UC1, lightmotion_foreground);
  }

  // Of the last frame, clipped to it; empty for a first frame.
  const std::vector<cv::Rect>& boxes() const { return boxes_; }

  // The learned background, of the type of the frames; empty before the first one.
  void getBackgroundImage(cv::OutputArray background) const override {
    if (empty()) return background.release();
    copy(background, type_, lightmotion_background);
  }

  // Forgets everything learned.
  void clear() override {
    detector_.reset();
    boxes_.clear();
    count_ = 0;
  }

  // Whether no frame has been processed.
  bool empty() const override { return !detector_; }

  // For regions of boxes, JSON text, changes: the detector of the current size. Null before the first frame
  // and after clear().
  Detector* detector() { return detector_ ? &*detector_ : nullptr; }

 private:
  static lightmotion_format format_of(int type) {
    switch (type) {
      case CV_8UC1:
        return LIGHTMOTION_FORMAT_GREY;
      case CV_8UC3:
        return LIGHTMOTION_FORMAT_BGR;
      case CV_8UC4:
        return LIGHTMOTION_FORMAT_BGRX;
      default:
        CV_Error(cv::Error::StsUnsupportedFormat,
                 "a frame is CV_8UC1, CV_8UC3 or CV_8UC4, not " + cv::typeToString(type));
    }
  }

  Detector& detector_for(const cv::Mat& frame) {
    if (frame.dims != 2 || frame.empty()) CV_Error(cv::Error::StsBadSize, "a frame has rows and columns");
    if (!detector_ || frame.size() != size_ || frame.type() != type_) {
      Detector made(configuration_, frame.cols, frame.rows, format_of(frame.type()));
      clear();
      size_ = frame.size();
      type_ = frame.type();
      detector_.emplace(std::move(made));
    }
    return *detector_;
  }

  template <typename Copy>
  void copy(cv::OutputArray to, int type, Copy picture) const {
    to.create(size_, type);
    cv::Mat pixels = to.getMat();
    picture(detector_->get(), pixels.data, pixels.step[0]);
  }

  std::string configuration_;
  double interval_ms_;
  std::int64_t count_ = 0;  // frames since the first one
  cv::Size size_;
  int type_ = -1;
  std::optional<Detector> detector_;
  std::vector<cv::Rect> boxes_;
};

}  // namespace lightmotion

#endif  // LIGHTMOTION_OPENCV_HPP
