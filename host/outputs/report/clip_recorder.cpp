#include "host/outputs/report/clip_recorder.h"

#include <opencv2/imgproc.hpp>

#include "host/outputs/report/output_names.h"
#include "host/outputs/report/shown_size.h"

namespace lm::host::outputs::report {
namespace {

using std::chrono::microseconds;

constexpr int kLongest = 960;
constexpr std::size_t kMostBytes = std::size_t{256} << 20U;

}  // namespace

ClipRecorder::Clip::Clip(const std::string& name, const VideoWriter::Shape& shape, const events::Event& event)
    : file(name), video(file.path(), "mp4", shape, name), next(event.from), to(event.to), first(event.from) {}

ClipRecorder::ClipRecorder(const std::string& folder, const source::SourceInfo& source, microseconds window)
    : folder_(folder), window_(window) {
  shape_.size = shown_size(source.size, {1, 1}, kLongest);
  shape_.pixel_aspect = source.pixel_aspect;
  shape_.rate = source.rate;
}

void ClipRecorder::frame(const cv::Mat& image, microseconds time) {
  Kept kept{{}, time};
  if (image.size() == shape_.size) {
    kept.image = image.clone();  // boxes may be drawn into it later
  } else {
    cv::resize(image, kept.image, shape_.size, 0, 0, cv::INTER_AREA);
  }
  kept_.push_back(std::move(kept));
  const std::size_t bytes = kept_.back().image.total() * kept_.back().image.elemSize();
  while (kept_.front().time < time - window_ || kept_.size() * bytes > kMostBytes) kept_.pop_front();

  for (auto clip = clips_.begin(); clip != clips_.end();) {
    write_to(*clip->second);
    if (clip->second->ended && time >= clip->second->to) {
      clip->second->video.finish();
      clip->second->file.commit();
      clip = clips_.erase(clip);
    } else {
      ++clip;
    }
  }
}

void ClipRecorder::begin(const events::Event& event) {
  const std::string name = folder_ + "/" + event_stem(event) + ".mp4";
  const auto [place, is_new] = clips_.try_emplace(event.id, std::make_unique<Clip>(name, shape_, event));
  write_to(*place->second);
}

void ClipRecorder::extend(const events::Event& event) {
  Clip& clip = *clips_.at(event.id);
  clip.to = event.to;
  write_to(clip);
}

void ClipRecorder::end(const events::Event& event) {
  extend(event);
  clips_.at(event.id)->ended = true;
}

void ClipRecorder::write_to(Clip& clip) const {
  for (const Kept& kept : kept_) {
    if (kept.time < clip.next || kept.time > clip.to) continue;
    if (clip.empty) clip.first = kept.time;
    clip.empty = false;
    clip.video.write(kept.image, kept.time - clip.first);
    clip.next = kept.time + microseconds(1);
  }
}

void ClipRecorder::finish() {
  for (const auto& [id, clip] : clips_) clip->video.finish();
}

void ClipRecorder::commit() {
  for (const auto& [id, clip] : clips_) clip->file.commit();
  clips_.clear();
}

}  // namespace lm::host::outputs::report
