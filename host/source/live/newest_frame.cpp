#include "host/source/live/newest_frame.h"

#include <utility>

namespace lm::host::source::live {

bool NewestFrame::put(Frame frame) {
  const std::scoped_lock lock(mutex_);
  const bool room = !frame_;
  if (!room) {
    frame.anew |= frame_->anew;
    if (!frame_->note.empty()) frame.note = frame_->note + (frame.note.empty() ? "" : "; " + frame.note);
  }
  frame_ = std::move(frame);
  news_before_frame_ = news_.size();
  changed_.notify_one();
  return room;
}

void NewestFrame::put_news(News news) {
  const std::scoped_lock lock(mutex_);
  news_.push_back(std::move(news));
  changed_.notify_one();
}

void NewestFrame::end() {
  const std::scoped_lock lock(mutex_);
  ended_ = true;
  changed_.notify_one();
}

NewestFrame::Taken NewestFrame::take(std::chrono::milliseconds longest) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, longest, [this] { return frame_ || ended_ || !news_.empty(); });
  const std::size_t count = frame_ ? news_before_frame_ : news_.size();
  const auto end = news_.begin() + static_cast<std::ptrdiff_t>(count);
  Taken taken{std::exchange(frame_, std::nullopt), {news_.begin(), end}, ended_};
  news_.erase(news_.begin(), end);
  return taken;
}

}  // namespace lm::host::source::live
