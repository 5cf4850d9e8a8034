#include "host/commands/serve/wire.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace lm::host::commands::serve {
namespace {

constexpr int kGlance = 50;  // milliseconds

// Waits until the socket is ready for `events`, or broken, which the following call reports.
bool ready(int file, short events, const GivesUp& gives_up) {
  for (;;) {
    pollfd wait{file, events, 0};
    const int result = poll(&wait, 1, gives_up ? kGlance : -1);
    if (result > 0) return true;
    if (result < 0 && errno != EINTR) return false;
    if (gives_up && gives_up()) return false;
  }
}

template <typename Byte, typename Call>
bool transfer(int file, short events, Byte* data, std::size_t length, const GivesUp& gives_up, Call call) {
  while (length > 0) {
    if (!ready(file, events, gives_up)) return false;
    const ssize_t done = call(file, data, length, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (done < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (done <= 0) return false;
    data += done;
    length -= static_cast<std::size_t>(done);
  }
  return true;
}

}  // namespace

bool receive_all(int file, void* data, std::size_t length, const GivesUp& gives_up) {
  return transfer(file, POLLIN, static_cast<char*>(data), length, gives_up, ::recv);
}

bool send_all(int file, const void* data, std::size_t length, const GivesUp& gives_up) {
  return transfer(file, POLLOUT, static_cast<const char*>(data), length, gives_up, ::send);
}

}  // namespace lm::host::commands::serve
