#include "host/outputs/mqtt/channel.h"

#include <algorithm>
#include <csignal>
#include <utility>

namespace lm::host::outputs::mqtt {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLittlePatience = 1s;  // to end without sending the rest

// Signals are handled by the analysing thread. The thread owns everything that it uses.
std::thread start_without_signals(std::unique_ptr<Link> link) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread([own = std::move(link)] { own->run(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

}  // namespace

Channel::Channel(const LinkSettings& settings)
    : mailbox_(std::make_shared<Mailbox>(kCapacity)),
      thread_(start_without_signals(std::make_unique<Link>(settings, mailbox_))) {}

Channel::~Channel() {
  if (!thread_.joinable()) return;
  mailbox_->abandon();
  thread_.detach();
}

void Channel::wait_done(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  bool done = mailbox_->wait_done(std::max(left, 0ms));
  if (!done) {
    mailbox_->abandon();
    done = mailbox_->wait_done(kLittlePatience);
  }
  if (done) thread_.join();
}

}  // namespace lm::host::outputs::mqtt
