#include "host/outputs/report/clip_recorder.h"

#include <iterator>
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
    : folder_(folder), live_(source.live), outage_("clips in " + folder), window_(window) {
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
    const auto next = std::next(clip);
    change(clip, [&] {
      write_to(*clip->second);
      if (!clip->second->ended || time < clip->second->to) return;
      complete(*clip->second);
      clips_.erase(clip);
    });
    clip = next;
  }
}

template <typename Write>
bool ClipRecorder::attempt(const Write& write) {
  if (live_) return outage_.attempt(write);
  write();
  return true;
}

// A clip that cannot be written is given up.
template <typename Write>
void ClipRecorder::change(Clips::iterator clip, const Write& write) {
  if (!attempt(write)) clips_.erase(clip);
}

void ClipRecorder::complete(Clip& clip) {
  clip.video.finish();
  clip.file.commit();
  outage_.worked();
}

void ClipRecorder::begin(const events::Event& event) {
  attempt([&] {
    const std::string name = folder_ + "/" + event_stem(event) + ".mp4";
    auto clip = std::make_unique<Clip>(name, shape_, event);
    write_to(*clip);
    clips_.try_emplace(event.id, std::move(clip));
  });
}

void ClipRecorder::extend(const events::Event& event) {
  const auto clip = clips_.find(event.id);
  clip->second->to = event.to;
  change(clip, [&] { write_to(*clip->second); });
}

void ClipRecorder::end(const events::Event& event) {
  clips_.at(event.id)->ended = true;
  extend(event);
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
  for (auto clip = clips_.begin(); clip != clips_.end();) {
    const auto next = std::next(clip);
    change(clip, [&] {
      if (live_) return complete(*clip->second);
      clip->second->video.finish();
    });
    clip = next;
  }
}

void ClipRecorder::commit() {
  for (const auto& [id, clip] : clips_) clip->file.commit();
  clips_.clear();
}

}  // namespace lm::host::outputs::report
