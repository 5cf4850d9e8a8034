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
  changed_.notify_one();
  return room;
}

void NewestFrame::put_message(std::string text) {
  const std::scoped_lock lock(mutex_);
  messages_.push_back(std::move(text));
  changed_.notify_one();
}

void NewestFrame::end() {
  const std::scoped_lock lock(mutex_);
  ended_ = true;
  changed_.notify_one();
}

NewestFrame::Taken NewestFrame::take(std::chrono::milliseconds longest) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, longest, [this] { return frame_ || ended_ || !messages_.empty(); });
  return {std::exchange(frame_, std::nullopt), std::exchange(messages_, {}), ended_};
}

}  // namespace lm::host::source::live
