// Any text as the configuration document, through the entry points.
#include <json/json.h>

#include <new>
#include <stdexcept>

#include "plugin/entry_points.h"
#include "tests/fuzz/target.h"

namespace {

enum class Start { ready, refused, threw };

// Any other exception ends the program.
Start started(const char* document) {
  try {
    return initialization(document) ? Start::ready : Start::refused;
  } catch (const std::invalid_argument&) {
  } catch (const std::out_of_range&) {
  } catch (const std::length_error&) {
  } catch (const std::bad_alloc&) {
  } catch (const Json::Exception&) {
  }
  return Start::threw;
}

bool answers() {
  int length = -77;
  char out = 'x';
  const bool result = getRes(&out) == 1;
  if (result) {
    fuzz::require(out == '\0', "a result before any frame");
  } else {
    fuzz::require(frameProc(nullptr, nullptr, &length) == 0 && length == -77 && out == 'x',
                  "something answers without a detector");
  }
  return result;
}

constexpr const char* good =
    R"({"frmW":"2","frmH":"2","frmChn":"1","roi":[{"points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},{"x":"0","y":"2"}]}]})";

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string document(reinterpret_cast<const char*>(data), size);
  {
    // Frames of up to 32768 pixels.
    const fuzz::MemoryLimit limit(32768);
    const Start start = started(document.c_str());
    fuzz::require(answers() == (start == Start::ready), "a detector where none should be, or none");
    terminate();
  }
  fuzz::require(started(good) == Start::ready, "no detector from a good document afterwards");
  terminate();
  return 0;
}
