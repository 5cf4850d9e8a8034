// Messages between the program and its detector process, over a socket.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace lm::host::commands::serve {

// What the detector process is asked: to start with a document when there are no pixels, or else to look at
// them. Followed by the text and the pixels.
struct DetectorRequest {
  std::uint64_t text = 0;    // bytes of the document or the timestamp
  std::uint64_t pixels = 0;  // bytes
};

// Followed by the text: the plug-in's result document, or why there is none.
struct DetectorAnswer {
  std::uint64_t failed = 0;
  std::uint64_t text = 0;          // bytes
  std::uint64_t microseconds = 0;  // that the plug-in took
};

// Returns whether to give up waiting.
using GivesUp = std::function<bool()>;

// Take or hand over all bytes. False when the other side is gone, or on giving up, which is looked at
// several times a second. Without `gives_up` they wait as long as it takes.
bool receive_all(int file, void* data, std::size_t length, const GivesUp& gives_up = {});
bool send_all(int file, const void* data, std::size_t length, const GivesUp& gives_up = {});

}  // namespace lm::host::commands::serve
