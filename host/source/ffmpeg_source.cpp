#include "host/source/ffmpeg_source.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <string_view>
#include <thread>
#include <utility>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/shown_address.h"
#include "host/base/time_text.h"
#include "host/source/frame_clock.h"

extern "C" {
#include <libavutil/display.h>
}

namespace lm::host::source {
namespace {

using namespace std::chrono_literals;
using Time = FrameClock::Time;

// The prefix keeps FFmpeg from reading a colon in a file name as a protocol.
std::string url_of(const std::string& name) {
  return name.find("://") == std::string::npos && !is_camera(name) ? "file:" + name : name;
}

Time to_time(std::int64_t value, AVRational base) {
  return Time(av_rescale_q(value, base, av::kMicroseconds));
}

// Clockwise quarter turns that make the picture upright, from the file's display matrix.
int quarter_turns(const AVStream& stream) {
  const std::uint8_t* const matrix = av::display_matrix(stream);
  if (matrix == nullptr) return 0;
  const double anticlockwise = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(matrix));
  if (!std::isfinite(anticlockwise)) return 0;
  return static_cast<int>(std::lround(-anticlockwise / 90) + 4) % 4;
}

// 0 for implausible rates: above 1000 frames per second, or less than one in 100,000 seconds.
double nominal_rate(AVFormatContext& input, AVStream& stream) {
  const AVRational rate = av_guess_frame_rate(&input, &stream, nullptr);
  const double value = rate.den > 0 ? av_q2d(rate) : 0;
  return value <= 1000 && value >= 1e-5 ? value : 0;
}

cv::Size pixel_aspect(AVFormatContext& input, AVStream& stream, int turns) {
  const AVRational aspect = av_guess_sample_aspect_ratio(&input, &stream, nullptr);
  if (aspect.num <= 0 || aspect.den <= 0) return {1, 1};
  return turns % 2 == 0 ? cv::Size(aspect.num, aspect.den) : cv::Size(aspect.den, aspect.num);
}

std::optional<Time> stated_duration(const AVFormatContext& input, const AVStream& stream) {
  if (stream.duration > 0) return believable_length(to_time(stream.duration, stream.time_base));
  if (input.duration > 0) return believable_length(to_time(input.duration, av::kMicroseconds));
  return std::nullopt;
}

[[noreturn]] void fail(const std::string& name, const std::string& cause) {
  throw base::Failure(base::kTrouble, name + ": " + cause);
}

// Loaded only for local cameras: it depends on dozens of packages that files and streams do not need. FFmpeg
// gives libavformat and libavdevice the same version number.
void load_camera_support() {
  constexpr const char* kLibrary = "libavdevice.so." AV_STRINGIFY(LIBAVFORMAT_VERSION_MAJOR);
  static const bool loaded = [] {
    void* library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    auto* const add = library == nullptr ? nullptr : dlsym(library, "avdevice_register_all");
    if (add != nullptr) reinterpret_cast<void (*)()>(add)();
    return add != nullptr;
  }();
  if (loaded) return;
  throw base::Failure(base::kRefused, std::string("local cameras need the library ") + kLibrary +
                                          ": install the package libavdevice" +
                                          AV_STRINGIFY(LIBAVFORMAT_VERSION_MAJOR));
}

}  // namespace

bool is_camera(const std::string& name) {
  return name.starts_with("/dev/video") || name.starts_with("/dev/v4l/");
}

FfmpegSource::FfmpegSource(const std::string& name, const Reading& reading, cv::Size size,
                           std::stop_token stop)
    : address_(name), reading_(reading), stop_(std::move(stop)), picker_(reading.fps) {
  info_.name = base::shown_address(name);
  info_.live = is_live(name);
  open_input();
  open_decoder();
  if (!decode()) {
    const std::string& cause = read_error_.empty() ? first_damage_ : read_error_;
    fail(info_.name, "no frame could be decoded" + (cause.empty() ? "" : ": " + cause));
  }
  if (is_single_picture()) {
    fail(info_.name,
         "a single picture cannot move; give a video or a picture sequence such as frame%04d.png");
  }
  describe(size);
}

// Called after the first picture. A packet read ahead is kept for the decoder.
bool FfmpegSource::is_single_picture() {
  const std::string_view format = input_->iformat->name;
  const bool pictures =
      format == "image2" || format == "gif" || format == "apng" || format.ends_with("_pipe");
  if (!pictures) return false;
  if (packets_ == 1 && !packet_waits_ && !drained_) packet_waits_ = read_packet();
  return packets_ == 1;
}

void FfmpegSource::start_deadline() {
  if (is_live(address_)) deadline_.allow(reading_.timeout);
}

// FFmpeg reads up to 7 s of a stream to detect its contents, which may be longer than the time limit.
void FfmpegSource::allow_probing() {
  if (!probing_ || input_->pb == nullptr || input_->pb->bytes_read == probed_) return;
  probed_ = input_->pb->bytes_read;
  start_deadline();
}

bool FfmpegSource::gives_up() {
  allow_probing();
  return base::interrupted() != 0 || stop_.stop_requested() || deadline_.passed();
}

std::string FfmpegSource::error_text(int code) const {
  const bool late = deadline_.passed() || (code == AVERROR_EXIT && base::interrupted() == 0);
  return late ? "no data for " + base::seconds_text(reading_.timeout) + " s" : av::error_text(code);
}

void FfmpegSource::open_input() {
  if (is_camera(address_)) load_camera_support();
  AVFormatContext* input = avformat_alloc_context();
  if (input == nullptr) throw std::bad_alloc();
  input->interrupt_callback = {
      [](void* self) { return static_cast<FfmpegSource*>(self)->gives_up() ? 1 : 0; }, this};
  if (is_camera(address_))
    input->flags |= AVFMT_FLAG_NONBLOCK;  // a blocking read of a camera cannot be interrupted
  AVDictionary* settings = nullptr;
  av_dict_set(&settings, "rtsp_transport", "tcp", 0);  // lost packets would look like motion
  const AVInputFormat* format = is_camera(address_) ? av_find_input_format("v4l2") : nullptr;
  start_deadline();
  const int opened = avformat_open_input(&input, url_of(address_).c_str(), format, &settings);
  av_dict_free(&settings);
  // On failure FFmpeg has freed the context.
  if (opened == AVERROR_INVALIDDATA && !deadline_.passed())
    fail(info_.name, "not a video, or too damaged to read");
  if (opened < 0) fail(info_.name, error_text(opened));
  input_.reset(input);
  start_deadline();
  probing_ = true;
  const int found = avformat_find_stream_info(input, nullptr);
  probing_ = false;
  if (found < 0) fail(info_.name, error_text(found));
}

void FfmpegSource::open_decoder() {
  const AVCodec* codec = nullptr;
  const int index = av_find_best_stream(input_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
  if (index == AVERROR_DECODER_NOT_FOUND) fail(info_.name, "no decoder for this video format");
  if (index < 0) fail(info_.name, "contains no video");
  stream_ = input_->streams[index];
  if ((stream_->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) fail(info_.name, "contains no video");
  for (unsigned i = 0; i < input_->nb_streams; ++i) {
    if (input_->streams[i] != stream_) input_->streams[i]->discard = AVDISCARD_ALL;
  }
  info_.duration = stated_duration(*input_, *stream_);
  info_.live = info_.live && !info_.duration;  // a source with a length is a recording
  untimed_ = info_.live && (input_->iformat->flags & AVFMT_NOTIMESTAMPS) != 0;
  whole_picture_needed_ = info_.live;
  decoder_ = av::new_codec(codec);
  decoder_->pkt_timebase = stream_->time_base;
  decoder_->thread_count = info_.live ? 1 : 0;  // threads delay frames
  int result = avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
  if (result >= 0) result = avcodec_open2(decoder_.get(), codec, nullptr);
  if (result < 0) fail(info_.name, av::error_text(result));
}

void FfmpegSource::describe(cv::Size size) {
  if (sws_isSupportedInput(static_cast<AVPixelFormat>(picture_->format)) == 0) {
    fail(info_.name, "unsupported pixel format");
  }
  const int turns = quarter_turns(*stream_);
  cv::Size lying(picture_->width, picture_->height);
  if (!size.empty()) lying = turns % 2 == 0 ? size : cv::Size(size.height, size.width);
  converter_.emplace(lying, turns);
  info_.size = converter_->size();
  info_.pixel_aspect = pixel_aspect(*input_, *stream_, turns);
  info_.rate = nominal_rate(*input_, *stream_);
  clock_.emplace(info_.rate > 0 ? Time(std::llround(1e6 / info_.rate)) : Time(40ms), reading_.max_gap);
}

bool FfmpegSource::next(Frame& frame) {
  while (base::interrupted() == 0) {
    if (!std::exchange(first_waits_, false) && !decode()) return false;
    frame = {};
    frame.stated = stated_time();
    if (number_ == 0) first_time_ = frame.stated;
    frame.time = clock_->next(frame.stated);
    if (std::exchange(leapt_, false))
      number_ = std::llround(double(frame.time.count()) / double(clock_->interval().count()));
    frame.number = number_++;
    end_ = frame.time + clock_->interval();
    note_time();
    if (frame.time < not_before_) continue;
    if (!picker_.wants(frame.time)) continue;
    frame.image = converter_->convert(*picture_);
    if (frame.image.empty()) {
      note_damage("unsupported pixel format");
      continue;
    }
    frame.note = std::exchange(note_, "");
    frame.repeated = std::exchange(repeated_, true) && watches_for_freezes();
    return true;
  }
  return false;
}

// If the container guarantees increasing timestamps, a frame's number follows from its time. Otherwise it is
// only known when reading from the start.
bool FfmpegSource::can_leap() const {
  constexpr int kUncertain = AVFMT_TS_DISCONT | AVFMT_NOTIMESTAMPS;
  return !info_.live && first_time_ && (input_->iformat->flags & kUncertain) == 0;
}

bool FfmpegSource::seek(Time time) {
  Frame first;  // the origin of times
  if (number_ == 0 && !next(first)) return false;
  if (!can_leap() || !leap(*first_time_ + time)) return false;
  not_before_ = time;
  return true;
}

// Continues from the last key frame before that time.
bool FfmpegSource::leap(Time stated) {
  const std::int64_t place = av_rescale_q(stated.count(), av::kMicroseconds, stream_->time_base);
  if (av_seek_frame(input_.get(), stream_->index, place, AVSEEK_FLAG_BACKWARD) < 0) return false;
  avcodec_flush_buffers(decoder_.get());
  av_packet_unref(packet_.get());
  packet_waits_ = drained_ = false;
  leapt_ = true;
  read_error_.clear();
  clock_->leap();
  picker_ = live::FramePicker(reading_.fps);
  return true;
}

void FfmpegSource::note_time() {
  if (clock_->note().empty()) return;
  note_ += (note_.empty() ? "" : "; ") + clock_->note();
}

std::optional<Time> FfmpegSource::stated_time() const {
  if (untimed_) return received_;
  if (picture_->best_effort_timestamp == AV_NOPTS_VALUE) return std::nullopt;
  return to_time(picture_->best_effort_timestamp, stream_->time_base);
}

// Decodes the next picture into picture_; false at the end.
bool FfmpegSource::decode() {
  while (base::interrupted() == 0) {
    const int result = avcodec_receive_frame(decoder_.get(), picture_.get());
    if (result >= 0) {
      const bool whole = picture_->decode_error_flags == 0 && (picture_->flags & AV_FRAME_FLAG_CORRUPT) == 0;
      if (!whole) note_damage("parts of a picture are missing");
      if (whole && av::is_key(*picture_)) whole_picture_needed_ = false;
      if (whole_picture_needed_) continue;
      compare_with_last();
      return true;
    }
    if (result == AVERROR_EOF) return false;
    if (result != AVERROR(EAGAIN)) note_damage(av::error_text(result));
    feed();
  }
  return false;
}

// Without a copy: the decoder leaves a picture as it is while there is a reference to it.
void FfmpegSource::compare_with_last() {
  if (!watches_for_freezes()) return;
  repeated_ = repeated_ && av::are_same(*picture_, *last_picture_);
  av_frame_unref(last_picture_.get());
  if (av_frame_ref(last_picture_.get(), picture_.get()) < 0) throw std::bad_alloc();
}

// Sends the decoder one more packet, or the end-of-stream marker.
void FfmpegSource::feed() {
  if (drained_) return;
  if (!packet_waits_ && !read_packet()) {
    drained_ = true;
    avcodec_send_packet(decoder_.get(), nullptr);
    return;
  }
  const int result = avcodec_send_packet(decoder_.get(), packet_.get());
  packet_waits_ = result == AVERROR(EAGAIN);
  if (packet_waits_) return;
  if (result < 0) note_damage(av::error_text(result));
  av_packet_unref(packet_.get());
}

// Reads the next packet of the video stream; false at the end.
bool FfmpegSource::read_packet() {
  start_deadline();
  for (;;) {
    const int result = read_in_time();
    if (result < 0) {
      if (result != AVERROR_EOF) read_error_ = error_text(result);
      return false;
    }
    if (packet_->stream_index == stream_->index) break;
    av_packet_unref(packet_.get());
  }
  ++packets_;
  if ((packet_->flags & AV_PKT_FLAG_CORRUPT) != 0) note_damage("a packet is incomplete");
  return true;
}

int FfmpegSource::read_in_time() {
  for (;;) {
    const int result = av_read_frame(input_.get(), packet_.get());
    received_ = std::chrono::duration_cast<Time>(base::Deadline::Clock::now() - opened_);
    if (result >= 0 && deadline_.passed()) {  // incomplete: the read timed out
      av_packet_unref(packet_.get());
      return AVERROR_EXIT;
    }
    if (result != AVERROR(EAGAIN)) return result;
    if (gives_up()) return AVERROR_EXIT;
    std::this_thread::sleep_for(5ms);
  }
}

// After a loss, pictures that refer to lost data are grey or smeared until the next key frame, which would be
// reported as motion.
void FfmpegSource::note_damage(const std::string& cause) {
  whole_picture_needed_ = info_.live;
  if (damaged_++ == 0) first_damage_ = cause;
}

// A truncated file often reads like one that ends normally; compare with the length in its header.
std::string FfmpegSource::early_end() const {
  const bool states_video = stream_->duration > 0 || input_->nb_streams == 1;
  if (!info_.duration || !states_video) return "";
  const Time tolerance = std::max<Time>(500ms, *info_.duration / 50);
  if (end_ + tolerance >= *info_.duration) return "";
  return "ends early, after " + base::seconds_text(end_) + " of " + base::seconds_text(*info_.duration) +
         " s";
}

std::string FfmpegSource::trouble() const {
  if (base::interrupted() != 0) return "";
  if (!read_error_.empty()) return "reading stopped: " + read_error_;
  if (info_.live) return "";  // starting mid-stream and losing packets is normal
  std::string text = early_end();
  if (damaged_ > 0) {
    text += (text.empty() ? "" : "; ") + std::to_string(damaged_) + (damaged_ == 1 ? " place" : " places") +
            " could not be decoded, first: " + first_damage_;
  }
  return text;
}

}  // namespace lm::host::source
