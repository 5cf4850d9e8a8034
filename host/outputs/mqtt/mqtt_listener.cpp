#include "host/outputs/mqtt/mqtt_listener.h"

#include <utility>

#include "host/base/interrupt.h"
#include "host/base/notice.h"

namespace lm::host::outputs::mqtt {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kFailedPatience = 1s;  // after a failed run

Topics topics_of(const MqttOptions& options, const std::string& source) {
  return {parse_address(options.address).prefix,
          options.camera.empty() ? camera_name(source) : options.camera};
}

std::string count(std::int64_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

}  // namespace

MqttListener::MqttListener(const MqttOptions& options, const std::string& source,
                           std::chrono::milliseconds patience)
    : patience_(patience),
      settings_{broker_address(options), options.authorities, "", "", ""},
      topics_(topics_of(options, source)),
      broker_(shown(settings_.address)),
      announcer_(topics_, [this](Message message) { send(std::move(message)); }) {
  open_channel(topics_.availability());
  by_topic_[topics_.motion()] = &open_channel(topics_.motion());
  announcer_.introduce(options.discovery);
}

MqttListener::~MqttListener() {
  if (!left_) leave("The program failed.", kFailedPatience);
}

// With the topic's will. Client names contain no dot otherwise, so they stay unique.
Channel& MqttListener::open_channel(const std::string& topic) {
  LinkSettings settings = settings_;
  settings.client = topics_.unique_id();
  settings.will_topic = topic;
  settings.will = kOffline;
  if (topic == topics_.motion()) {
    settings.client += ".motion";
    settings.will = kNoMotion;
  } else if (topic == topics_.camera_state()) {
    settings.client += ".camera";
    settings.will = camera_payload(kUnknown, std::nullopt, "The program is not running.");
  }
  return channels_.emplace_back(settings);
}

void MqttListener::source_changed(const source::SourceState& state) {
  const std::string topic = topics_.camera_state();
  if (!by_topic_.contains(topic)) by_topic_[topic] = &open_channel(topic);
  announcer_.camera(state);
  report_news();
}

void MqttListener::send(Message message) {
  const auto own = by_topic_.find(message.topic);
  Channel& channel = own == by_topic_.end() ? channels_.front() : *own->second;
  channel.mailbox().push(std::move(message));
}

void MqttListener::frame(const source::Frame&, const events::Observation&) { report_news(); }

void MqttListener::finish() {
  leave(base::interrupted() != 0 ? "The program was stopped." : "The video ended.", patience_);
  report_news();
  report_losses();
}

void MqttListener::leave(const std::string& reason, std::chrono::milliseconds patience) {
  left_ = true;
  announcer_.leave(reason);
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (Channel& channel : channels_) channel.mailbox().close();
  for (Channel& channel : channels_) channel.wait_done(deadline);
}

void MqttListener::report_news() {
  for (Channel& channel : channels_) {
    const std::string news = channel.mailbox().take_news();
    if (news.empty() || news == last_news_) continue;
    base::warn(broker_ + ": " + news);
    last_news_ = news;
  }
}

void MqttListener::report_losses() {
  std::int64_t updates = 0;
  std::int64_t milestones = 0;
  std::size_t left = 0;
  for (Channel& channel : channels_) {
    const Outbox::Drops drops = channel.mailbox().drops();
    updates += drops.updates;
    milestones += drops.milestones;
    left += channel.mailbox().unsent();
  }
  if (updates + milestones > 0) {
    base::warn(broker_ + ": queue full, dropped " + count(updates, "update message") + " and " +
               count(milestones, "begin or end message"));
  }
  if (left > 0) base::warn(broker_ + ": " + count(static_cast<std::int64_t>(left), "message") + " not sent");
}

}  // namespace lm::host::outputs::mqtt
