#include "host/base/interrupt.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t stop_signal = 0;

}  // namespace

namespace lm::host::base {

void watch_for_interrupts() {
  struct sigaction once {};
  once.sa_handler = [](int number) { stop_signal = number; };
  // With SA_RESTART an output line being written when the signal arrives stays whole.
  once.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(number, &once, nullptr);
  }
  for (const int number : {SIGPIPE, SIGXFSZ}) std::signal(number, SIG_IGN);
}

int interrupted() { return stop_signal; }

}  // namespace lm::host::base
