#include "host/commands/serve/showcase.h"

#include <utility>

namespace lm::host::commands::serve {

void Showcase::show(Shot shot) {
  auto next = std::make_shared<Shown>();
  {
    const std::scoped_lock lock(mutex_);
    shot.sequence = shown_ ? shown_->shot->sequence + 1 : 1;
    next->shot = std::make_shared<const Shot>(std::move(shot));
    shown_ = std::move(next);
  }
  changed_.notify_all();
}

void Showcase::show_again(std::uint64_t state) {
  const std::shared_ptr<const Shot> last = newest();
  if (!last) return;
  Shot again = *last;
  again.state = state;
  show(std::move(again));
}

std::shared_ptr<Showcase::Shown> Showcase::other(std::uint64_t than, std::chrono::milliseconds longest) {
  std::unique_lock lock(mutex_);
  const auto there = [&] { return shown_ && shown_->shot->sequence != than; };
  changed_.wait_for(lock, longest, [&] { return closed_ || there(); });
  return !closed_ && there() ? shown_ : nullptr;
}

Showcase::View Showcase::wait(std::uint64_t than, std::chrono::milliseconds longest) {
  const std::shared_ptr<Shown> shown = other(than, longest);
  if (!shown) return {};
  std::call_once(shown->once, [&] { shown->jpeg = page_picture(shown->shot->image, pixel_aspect_); });
  return {shown->shot, shown->jpeg};
}

std::shared_ptr<const Shot> Showcase::newest() {
  const std::scoped_lock lock(mutex_);
  return shown_ ? shown_->shot : nullptr;
}

void Showcase::close() {
  {
    const std::scoped_lock lock(mutex_);
    closed_ = true;
  }
  changed_.notify_all();
}

}  // namespace lm::host::commands::serve
