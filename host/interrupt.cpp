#include "host/interrupt.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t stop_signal = 0;

}  // namespace

namespace lm::host {

void watch_for_interrupts() {
  struct sigaction once {};
  once.sa_handler = [](int number) { stop_signal = number; };
  once.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaction(number, &once, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

int interrupted() { return stop_signal; }

}  // namespace lm::host
