#include "host/commands/serve/wire.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <string_view>

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

template <typename Number>
void append_number(std::string& bytes, Number number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

// Reads what append_number and std::string::append wrote; nothing after the end.
class Bytes {
 public:
  explicit Bytes(std::string_view rest) : rest_(rest) {}

  std::string_view text(std::size_t length) {
    complete_ = complete_ && length <= rest_.size();
    if (!complete_) return "";
    const std::string_view text = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return text;
  }

  template <typename Number>
  Number number() {
    Number number{};
    const std::string_view bytes = text(sizeof number);
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }

  bool complete() const { return complete_; }
  bool more() const { return complete_ && !rest_.empty(); }

 private:
  std::string_view rest_;
  bool complete_ = true;
};

}  // namespace

std::string bytes_of(const detector::Boxes& boxes) {
  std::string bytes;
  for (const detector::Box& box : boxes) {
    for (const double side : {box.area.x, box.area.y, box.area.width, box.area.height}) {
      append_number(bytes, side);
    }
    append_number(bytes, box.regions.size());
    for (const std::string& name : box.regions) {
      append_number(bytes, name.size());
      bytes += name;
    }
  }
  return bytes;
}

std::optional<detector::Boxes> boxes_from(const std::string& bytes) {
  detector::Boxes boxes;
  Bytes rest(bytes);
  while (rest.more()) {
    detector::Box& box = boxes.emplace_back();
    for (double* side : {&box.area.x, &box.area.y, &box.area.width, &box.area.height}) {
      *side = rest.number<double>();
    }
    const auto names = rest.number<std::size_t>();
    for (std::size_t i = 0; i < names && rest.complete(); ++i) {
      box.regions.emplace_back(rest.text(rest.number<std::size_t>()));
    }
  }
  return rest.complete() ? std::optional(boxes) : std::nullopt;
}

bool receive_all(int file, void* data, std::size_t length, const GivesUp& gives_up) {
  return transfer(file, POLLIN, static_cast<char*>(data), length, gives_up, ::recv);
}

bool send_all(int file, const void* data, std::size_t length, const GivesUp& gives_up) {
  return transfer(file, POLLOUT, static_cast<const char*>(data), length, gives_up, ::send);
}

}  // namespace lm::host::commands::serve
