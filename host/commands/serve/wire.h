// Messages between the program and its detector process, over a socket.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "host/detector/box.h"

namespace lm::host::commands::serve {

// A request to the detector process, for frames of this size: with a document, to start or restart; without
// one, to process a frame. Followed by the text of the document or the pixels.
struct DetectorRequest {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint64_t text = 0;         // bytes
  std::uint64_t pixels = 0;       // bytes
  std::int64_t milliseconds = 0;  // of the frame
};

// Followed by the boxes, or the error message.
struct DetectorAnswer {
  std::uint64_t failed = 0;
  std::uint64_t bytes = 0;
  std::uint64_t microseconds = 0;  // processing time of the detector
};

std::string bytes_of(const detector::Boxes& boxes);
// None if they are not those of boxes.
std::optional<detector::Boxes> boxes_from(const std::string& bytes);

// Whether to stop waiting.
using GivesUp = std::function<bool()>;

// Receive or send all bytes. False if the other side has closed the socket, or when `gives_up` returns true;
// it is polled several times per second. Without it, they wait indefinitely.
bool receive_all(int file, void* data, std::size_t length, const GivesUp& gives_up = {});
bool send_all(int file, const void* data, std::size_t length, const GivesUp& gives_up = {});

}  // namespace lm::host::commands::serve
