#include "host/base/interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t stop_signal = 0;
volatile std::sig_atomic_t hangup_signals = 0;
volatile std::sig_atomic_t began_on_terminal = 0;

// Async-signal-safe.
bool has_terminal() {
  const int terminal = open("/dev/tty", O_RDONLY | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0) return false;
  close(terminal);
  return true;
}

void hang_up(int number) {
  const int error = errno;
  if (began_on_terminal != 0 && !has_terminal()) {
    stop_signal = number;
  } else {
    hangup_signals = hangup_signals + 1;
  }
  errno = error;
}

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

void count_hangups() {
  began_on_terminal = has_terminal() ? 1 : 0;
  struct sigaction every {};
  every.sa_handler = hang_up;
  every.sa_flags = SA_RESTART;
  struct sigaction before {};
  sigaction(SIGHUP, nullptr, &before);
  if (before.sa_handler != SIG_IGN) sigaction(SIGHUP, &every, nullptr);
}

int hangups() { return hangup_signals; }

int interrupted() { return stop_signal; }

}  // namespace lm::host::base
