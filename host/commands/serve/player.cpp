#include "host/commands/serve/player.h"

#include <utility>

#include "host/detector/adapt.h"

namespace lm::host::commands::serve {
Player::Player(PlayerPlan plan, const std::string& document)
    : plan_(std::move(plan)),
      source_(source::open_source(plan_.source, plan_.reading.reading, source_stop_)),
      back_off_(base::real_chance()),
      showcase_(source_->info().pixel_aspect) {
  source_->set_listener([this](const std::string& text) { set_problem(away_, text); });
  info_ = state_.source = source_->info();
  state_.document = document;
  detector_ = start_detector(document);
  begin_pass("");
  thread_ = std::jthread([this] { work(); });
}

Player::~Player() { stop(); }

void Player::stop() {
  stop_.request_stop();
  showcase_.close();
  const std::scoped_lock lock(mutex_);
  source_stop_.request_stop();
}

Player::Detector Player::start_detector(const std::string& document) const {
  const cv::Size analysed = detector::analysed_size(document, state().source.size, plan_.reading.scale);
  return {document, std::make_unique<DetectorProcess>(plan_.detector, document, analysed, stop_.get_token())};
}

PlayerState Player::state() const {
  const std::scoped_lock lock(mutex_);
  PlayerState state = state_;
  for (const std::string* text : {&away_, &damage_, &detector_trouble_}) {
    if (!text->empty()) state.problem += (state.problem.empty() ? "" : "; ") + *text;
  }
  return state;
}

void Player::play(bool playing) {
  {
    const std::scoped_lock lock(mutex_);
    if (std::exchange(state_.playing, playing) == playing) return;
  }
  announce();
}

void Player::seek(Time time) {
  {
    const std::scoped_lock lock(mutex_);
    wishes_.seek = time;
  }
  asked_.notify_all();
}

void Player::apply(const std::string& document) {
  Detector detector = start_detector(document);
  {
    const std::scoped_lock lock(mutex_);
    wishes_.detector = std::move(detector);
    state_.document = document;
  }
  announce();
}

void Player::compare(const std::string& document) {
  Detector detector;
  if (!document.empty()) detector = start_detector(document);
  {
    const std::scoped_lock lock(mutex_);
    state_.comparing = detector.process != nullptr;
    wishes_.old = std::move(detector);
  }
  announce();
}

// Notifies the playing thread and all viewers.
void Player::announce() {
  std::uint64_t number = 0;
  {
    const std::scoped_lock lock(mutex_);
    number = ++state_.number;
  }
  asked_.notify_all();
  showcase_.show_again(number);
}

}  // namespace lm::host::commands::serve
