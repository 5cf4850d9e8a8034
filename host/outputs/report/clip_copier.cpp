#include "host/outputs/report/clip_copier.h"

#include <filesystem>
#include <limits>
#include <memory>

#include "host/base/failure.h"
#include "host/source/av.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace lm::host::outputs::report {
namespace {

constexpr int kTrialPackets = 100;
constexpr std::int64_t kAllTime = std::numeric_limits<std::int64_t>::max();

struct FreeOutput {
  void operator()(AVFormatContext* output) const { avformat_free_context(output); }
};
using Output = std::unique_ptr<AVFormatContext, FreeOutput>;

// One of FFmpeg's error codes.
struct Refusal {
  int code;
};

int check(int result) {
  if (result < 0) throw Refusal{result};
  return result;
}

// A packet's presentation time or, if the container does not state it, its decoding time.
std::int64_t shown_at(const AVPacket& packet) {
  return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

class Copy {
 public:
  explicit Copy(const std::string& file) {
    AVFormatContext* input = nullptr;
    check(avformat_open_input(&input, ("file:" + file).c_str(), nullptr, nullptr));
    input_.reset(input);
    check(avformat_find_stream_info(input, nullptr));
    video_ = check(av_find_best_stream(input, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0));
    audio_ = av_find_best_stream(input, AVMEDIA_TYPE_AUDIO, -1, video_, nullptr, 0);
    for (int i = 0; i < int(input->nb_streams); ++i) {
      if (i != video_ && i != audio_) input->streams[i]->discard = AVDISCARD_ALL;
    }
  }

  void begin(const char* container, const std::string& path) {
    AVFormatContext* output = nullptr;
    check(avformat_alloc_output_context2(&output, nullptr, container, ("file:" + path).c_str()));
    output_.reset(output);
    for (const int stream : {video_, audio_}) {
      if (stream < 0) continue;
      const AVStream& from = *input_->streams[stream];
      AVStream* to = avformat_new_stream(output, nullptr);
      if (to == nullptr) check(AVERROR(ENOMEM));
      check(avcodec_parameters_copy(to->codecpar, from.codecpar));
      to->codecpar->codec_tag = 0;  // codec tags differ between containers
      to->time_base = from.time_base;
      to->sample_aspect_ratio = from.sample_aspect_ratio;
      to->avg_frame_rate = from.avg_frame_rate;
      source::av::copy_side_data(from, *to);
    }
  }

  void write_trial() {
    check(avio_open_dyn_buf(&output_->pb));
    int result = 0;
    try {
      write(AV_NOPTS_VALUE, kAllTime, kTrialPackets);
    } catch (const Refusal& refusal) {
      result = refusal.code;
    }
    std::uint8_t* bytes = nullptr;
    avio_close_dyn_buf(output_->pb, &bytes);
    output_->pb = nullptr;
    av_free(bytes);
    check(result);
  }

  void write_file(std::chrono::microseconds from, std::chrono::microseconds to) {
    const std::int64_t start = key_before(in_video_time(from));
    check(avio_open(&output_->pb, output_->url, AVIO_FLAG_WRITE));
    // Puts the index of an MP4 at the front, so that browsers can play it before it is complete; other
    // containers have no such option.
    av_opt_set(output_->priv_data, "movflags", "+faststart", 0);
    int result = 0;
    try {
      seek(start);
      write(start, in_video_time(to), std::numeric_limits<int>::max());
      result = output_->pb->error;
    } catch (const Refusal& refusal) {
      result = refusal.code;
    }
    const int closed = avio_closep(&output_->pb);
    check(result);
    check(closed);
  }

 private:
  AVRational video_unit() const { return input_->streams[video_]->time_base; }

  std::int64_t in_video_time(std::chrono::microseconds time) const {
    return av_rescale_q(time.count(), source::av::kMicroseconds, video_unit());
  }

  void seek(std::int64_t time) { check(av_seek_frame(input_.get(), video_, time, AVSEEK_FLAG_BACKWARD)); }

  bool read() {
    av_packet_unref(packet_.get());
    const int result = av_read_frame(input_.get(), packet_.get());
    return result >= 0;  // a damaged file is used up to the damage
  }

  // The time of the last key frame at or before `time`; of the first key frame if all are later.
  std::int64_t key_before(std::int64_t time) {
    seek(time);
    std::int64_t key = AV_NOPTS_VALUE;
    while (read()) {
      if (packet_->stream_index != video_) continue;
      if (key != AV_NOPTS_VALUE && packet_->dts != AV_NOPTS_VALUE && packet_->dts > time) break;
      const bool is_key = (packet_->flags & AV_PKT_FLAG_KEY) != 0;
      if (is_key && (key == AV_NOPTS_VALUE || shown_at(*packet_) <= time)) key = shown_at(*packet_);
    }
    if (key == AV_NOPTS_VALUE) check(AVERROR_INVALIDDATA);
    return key;
  }

  // Whether the packet is shown between the times. `started`: whether the first key frame has been read.
  bool wanted(std::int64_t start, std::int64_t end, bool& started) const {
    const std::int64_t shown = shown_at(*packet_);
    if (packet_->stream_index == audio_) {
      const AVRational unit = input_->streams[audio_]->time_base;
      return av_compare_ts(shown, unit, start, video_unit()) >= 0 &&
             (end == kAllTime || av_compare_ts(shown, unit, end, video_unit()) <= 0);
    }
    if (packet_->stream_index != video_ || shown < start) return false;
    started = started || (packet_->flags & AV_PKT_FLAG_KEY) != 0;
    return started;
  }

  // From the key frame at `start`; from the first one if that is not given.
  void write(std::int64_t start, std::int64_t end, int most_packets) {
    check(avformat_write_header(output_.get(), nullptr));
    bool started = false;
    for (int count = 0; count < most_packets && read(); ++count) {
      const bool is_video = packet_->stream_index == video_;
      if (is_video && start == AV_NOPTS_VALUE) start = shown_at(*packet_);
      if (is_video && started && packet_->dts != AV_NOPTS_VALUE && packet_->dts > end) break;
      if (start != AV_NOPTS_VALUE && wanted(start, end, started)) write_packet(start);
    }
    check(av_write_trailer(output_.get()));
  }

  void write_packet(std::int64_t start) {
    const int in = packet_->stream_index;
    const int out = in == video_ ? 0 : 1;
    const AVRational unit = input_->streams[in]->time_base;
    const std::int64_t offset = av_rescale_q(start, video_unit(), unit);
    if (packet_->pts != AV_NOPTS_VALUE) packet_->pts -= offset;
    if (packet_->dts != AV_NOPTS_VALUE) packet_->dts -= offset;
    packet_->pos = -1;
    packet_->stream_index = out;
    av_packet_rescale_ts(packet_.get(), unit, output_->streams[out]->time_base);
    check(av_interleaved_write_frame(output_.get(), packet_.get()));
  }

  source::av::Input input_;
  Output output_;
  source::av::Packet packet_ = source::av::new_packet();
  int video_ = -1;
  int audio_ = -1;
};

}  // namespace

const char* container_for_copy(const std::string& file) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) return nullptr;
  for (const char* container : {"mp4", "matroska"}) {
    try {
      Copy copy(file);
      copy.begin(container, "");
      copy.write_trial();
      return container;
    } catch (const Refusal&) {  // another container may accept it
    }
  }
  return nullptr;
}

void copy_clip(const std::string& file, const char* container, std::chrono::microseconds from,
               std::chrono::microseconds to, const base::PendingFile& clip) {
  try {
    Copy copy(file);
    copy.begin(container, clip.path());
    copy.write_file(from, to);
  } catch (const Refusal& refusal) {
    throw base::Failure(base::kTrouble,
                        clip.target() + " cannot be written: " + source::av::error_text(refusal.code));
  }
}

}  // namespace lm::host::outputs::report
