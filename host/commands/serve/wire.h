// Messages between the program and its detector process, over a socket.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace lm::host::commands::serve {

// A request to the detector process: without pixels, to start with a document; otherwise to process a frame.
// Followed by the text and the pixels.
struct DetectorRequest {
  std::uint64_t text = 0;    // bytes of the document or the timestamp
  std::uint64_t pixels = 0;  // bytes
};

// Followed by the text: the plug-in's result document, or the error message.
struct DetectorAnswer {
  std::uint64_t failed = 0;
  std::uint64_t text = 0;          // bytes
  std::uint64_t microseconds = 0;  // processing time of the plug-in
};

// Whether to stop waiting.
using GivesUp = std::function<bool()>;

// Receive or send all bytes. False if the other side has closed the socket, or when `gives_up` returns true;
// it is polled several times per second. Without it, they wait indefinitely.
bool receive_all(int file, void* data, std::size_t length, const GivesUp& gives_up = {});
bool send_all(int file, const void* data, std::size_t length, const GivesUp& gives_up = {});

}  // namespace lm::host::commands::serve
