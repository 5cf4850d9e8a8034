// Files, streams and cameras through FFmpeg's libraries.
#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

#include "host/base/deadline.h"
#include "host/source/av.h"
#include "host/source/frame_clock.h"
#include "host/source/live/frame_picker.h"
#include "host/source/picture_converter.h"
#include "host/source/source.h"

namespace lm::host::source {

// "/dev/video0", "/dev/v4l/by-id/..." and the like.
bool is_camera(const std::string& name);

class FfmpegSource : public Source {
 public:
  // Opens the source and decodes its first frame, which determines the frame size unless `size` does. `stop`
  // ends all waiting.
  explicit FfmpegSource(const std::string& name, const Reading& reading = {}, cv::Size size = {},
                        std::stop_token stop = {});
  FfmpegSource(const FfmpegSource&) = delete;
  FfmpegSource& operator=(const FfmpegSource&) = delete;

  const SourceInfo& info() const override { return info_; }
  bool next(Frame& frame) override;
  bool seek(std::chrono::microseconds time) override;
  std::string trouble() const override;

 private:
  void open_input();
  void open_decoder();
  bool decode();
  void feed();
  bool watches_for_freezes() const { return info_.live && reading_.frozen.count() > 0; }
  void compare_with_last();
  bool read_packet();
  int read_in_time();
  void start_deadline();
  bool can_leap() const;
  bool leap(FrameClock::Time stated);
  void allow_probing();
  bool gives_up();
  std::string error_text(int code) const;
  void note_damage(const std::string& cause);
  bool is_single_picture();
  void describe(cv::Size size);
  void note_time();
  std::string early_end() const;
  std::optional<FrameClock::Time> stated_time() const;

  std::string address_;  // as given, with passwords
  Reading reading_;
  std::stop_token stop_;
  base::Deadline deadline_;
  SourceInfo info_;
  av::Input input_;
  AVStream* stream_ = nullptr;  // part of input_
  av::Codec decoder_;
  av::Packet packet_ = av::new_packet();
  av::Picture picture_ = av::new_picture();
  av::Picture last_picture_ = av::new_picture();  // of a live source
  bool repeated_ = true;                          // all pictures since the last frame returned
  std::optional<PictureConverter> converter_;
  std::optional<FrameClock> clock_;
  live::FramePicker picker_;
  std::optional<FrameClock::Time> first_time_;  // as the first frame states it
  FrameClock::Time not_before_{0};              // requested by seek
  std::int64_t number_ = 0;                     // of the next frame
  std::string note_;                            // for the next frame returned
  base::Deadline::Clock::time_point opened_ = base::Deadline::Clock::now();
  FrameClock::Time received_{0};       // arrival time of the last packet on that scale
  bool untimed_ = false;               // a live stream without timestamps: arrival times are used
  bool whole_picture_needed_ = false;  // pictures before the next key frame are skipped
  bool first_waits_ = true;            // the constructor's picture has not been returned yet
  std::int64_t packets_ = 0;           // of the video stream, read so far
  bool probing_ = false;
  std::int64_t probed_ = 0;    // bytes
  bool packet_waits_ = false;  // the decoder had no room for it
  bool drained_ = false;
  bool leapt_ = false;  // the next frame's number is derived from its time

  FrameClock::Time end_{0};  // of the last frame
  int damaged_ = 0;
  std::string first_damage_;
  std::string read_error_;
};

}  // namespace lm::host::source
