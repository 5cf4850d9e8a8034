// Any text as the configuration of a detector by handle, and as changes to one.
#include "lightmotion/lightmotion.h"
#include "tests/fuzz/target.h"

namespace {

constexpr const char* good = R"({"frmW": 40, "frmH": 20, "format": "grey"})";

// Whether the message ends within its buffer, and is there when it has to be.
void requireMessage(const std::array<char, 64>& message, bool required) {
  const auto end = std::find(message.begin(), message.end(), '\0');
  fuzz::require(end != message.end(), "a message without an end");
  fuzz::require(!required || end != message.begin(), "no message");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  // Frames of up to 32768 pixels.
  const fuzz::MemoryLimit limit(32768);
  std::array<char, 64> message{};
  lightmotion_detector* detector = lightmotion_create(text.c_str(), message.data(), message.size());
  requireMessage(message, detector == nullptr);
  lightmotion_destroy(detector);

  detector = lightmotion_create(good, nullptr, 0);
  fuzz::require(detector != nullptr, "a good configuration is refused");
  const std::array<std::uint8_t, 800> frame{};
  fuzz::require(lightmotion_process(detector, frame.data(), 0, 0, nullptr) == 0, "a first frame fails");
  const int outcome = lightmotion_change(detector, text.c_str(), message.data(), message.size());
  fuzz::require(outcome == LIGHTMOTION_OK || outcome == LIGHTMOTION_ERROR_CONFIGURATION ||
                    outcome == LIGHTMOTION_ERROR_MEMORY,
                "an undocumented outcome");
  requireMessage(message, outcome != LIGHTMOTION_OK);
  fuzz::require(lightmotion_process(detector, frame.data(), 0, 40, nullptr) == 0, "a still frame has boxes");
  lightmotion_destroy(detector);
  return 0;
}
