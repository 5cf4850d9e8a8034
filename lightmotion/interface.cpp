// The functions of lightmotion.h: arguments are checked here, and no exception leaves.
#include <json/json.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/c_locale.h"
#include "config/check/json_document.h"
#include "lightmotion/detector.h"
#include "lightmotion/lightmotion.h"

namespace {

using lm::check::Finding;
using lm::check::Severity;

// ---- messages ---------------------------------------------------------------------------------------------

// Cut before a character that does not fit.
void tell(char* message, std::size_t size, std::string_view text) noexcept {
  if (message == nullptr || size == 0) return;
  std::size_t length = std::min(text.size(), size - 1);
  const auto continues = [&](std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
  };
  while (length > 0 && continues(length)) --length;
  std::memcpy(message, text.data(), length);
  message[length] = '\0';
}

// The findings of the severity, one per line; with their places in a text of several lines.
std::string linesOf(const std::vector<Finding>& findings, Severity severity, bool withPlaces) {
  std::string lines;
  for (const Finding& finding : findings) {
    if (finding.severity != severity) continue;
    if (!lines.empty()) lines += '\n';
    if (withPlaces && finding.line > 0) {
      lines.append("line ").append(std::to_string(finding.line)).append(": ");
    }
    std::string line = lm::check::message(finding);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' '; }, ' ');
    lines += line;
  }
  return lines;
}

// ---- failures ---------------------------------------------------------------------------------------------

// What `work` returns, or the error that its exception stands for.
template <typename Work>
int guarded(const Work& work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return LIGHTMOTION_ERROR_MEMORY;
  } catch (const std::length_error&) {
    return LIGHTMOTION_ERROR_MEMORY;
  } catch (const Json::RuntimeError&) {  // of its own allocations
    return LIGHTMOTION_ERROR_MEMORY;
  } catch (...) {
    return LIGHTMOTION_ERROR_INTERNAL;
  }
}

template <typename Work>
int guarded(char* message, std::size_t size, const Work& work) noexcept {
  tell(message, size, "");
  const int outcome = guarded([&] {
    const lm::CLocaleScope plainNumbers;
    return work();
  });
  if (outcome < 0 && outcome != LIGHTMOTION_ERROR_CONFIGURATION) {
    tell(message, size, lightmotion_error_text(outcome));
  }
  return outcome;
}

// ---- configurations ---------------------------------------------------------------------------------------

struct Said {
  char* message;
  std::size_t size;
};

std::optional<Json::Value> parsed(const char* text, const Said& said) {
  try {
    return lm::check::readDocumentInAnyLocale(text);
  } catch (const lm::check::NoDocument& fault) {
    tell(said.message, said.size, fault.what());
    return std::nullopt;
  }
}

std::optional<lm::HandleConfiguration> readIn(const Json::Value& document, const std::string& text,
                                              const lm::KnownFrame& known, const Said& said) {
  lm::HandleReading reading = lm::readHandleDocument(document, text, known);
  const Severity told = reading.configuration ? Severity::warning : Severity::error;
  const bool severalLines = text.find('\n') != std::string::npos;
  tell(said.message, said.size, linesOf(reading.findings, told, severalLines));
  return std::move(reading.configuration);
}

lm::KnownFrame knownOf(const lm::HandleConfiguration& configuration) {
  return {configuration.frame.frmW, configuration.frame.frmH, configuration.format.format};
}

bool isFormat(int format) { return format >= 0 && format <= LIGHTMOTION_FORMAT_NV12; }

// Null when `changes` may be made, else the key that cannot be changed.
const char* fixedKeyIn(const Json::Value& changes) {
  for (const char* key : {"frmW", "frmH", "frmChn", "format"}) {
    if (changes.isMember(key)) return key;
  }
  return nullptr;
}

Json::Value merged(Json::Value document, const Json::Value& changes) {
  for (const std::string& key : changes.getMemberNames()) {
    if (changes[key].isNull()) {
      document.removeMember(key);
    } else {
      document[key] = changes[key];
    }
  }
  return document;
}

// ---- pictures ---------------------------------------------------------------------------------------------

// The stride that an argument means, or 0 when it is too small or too large.
std::size_t strideOf(std::size_t stride, std::size_t rowBytes, std::int32_t height) {
  if (stride == 0) return rowBytes;
  const std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / static_cast<std::size_t>(height);
  return stride < rowBytes || stride > most ? 0 : stride;
}

// Whether the area lies within the frame.
bool isWithin(const lm::FrameSize& frame, const lm::compact::Area& area) {
  return area.x >= 0 && area.y >= 0 && area.width >= 1 && area.height >= 1 &&
         area.width <= frame.frmW - area.x && area.height <= frame.frmH - area.y;
}

lm::compact::Area wholeFrame(const lightmotion_detector* detector) {
  if (detector == nullptr) return {};
  const lm::FrameSize& frame = detector->configuration().frame;
  return {0, 0, frame.frmW, frame.frmH};
}

template <typename Copy>
int copied(const lightmotion_detector* detector, const lm::compact::Area& area, void* to, std::size_t stride,
           std::size_t bytesPerPixel, const Copy& copy) {
  if (detector == nullptr || to == nullptr) return LIGHTMOTION_ERROR_ARGUMENT;
  if (!isWithin(detector->configuration().frame, area)) return LIGHTMOTION_ERROR_ARGUMENT;
  const std::size_t rowBytes = static_cast<std::size_t>(area.width) * bytesPerPixel;
  const std::size_t bytes = strideOf(stride, rowBytes, area.height);
  if (bytes == 0) return LIGHTMOTION_ERROR_ARGUMENT;
  if (!detector->engine().started()) return LIGHTMOTION_ERROR_NO_FRAME;
  copy(static_cast<std::uint8_t*>(to), bytes);
  return LIGHTMOTION_OK;
}

}  // namespace

// ---- version and errors -----------------------------------------------------------------------------------

#define LIGHTMOTION_TEXT_OF(number) #number
#define LIGHTMOTION_JOINED(major, minor, patch) \
  LIGHTMOTION_TEXT_OF(major) "." LIGHTMOTION_TEXT_OF(minor) "." LIGHTMOTION_TEXT_OF(patch)

int lightmotion_version(void) { return LIGHTMOTION_VERSION; }

const char* lightmotion_version_text(void) {
  return LIGHTMOTION_JOINED(LIGHTMOTION_VERSION_MAJOR, LIGHTMOTION_VERSION_MINOR, LIGHTMOTION_VERSION_PATCH);
}

const char* lightmotion_error_text(int error) {
  switch (error) {
    case LIGHTMOTION_OK:
      return "no error";
    case LIGHTMOTION_ERROR_ARGUMENT:
      return "invalid argument";
    case LIGHTMOTION_ERROR_CONFIGURATION:
      return "configuration refused";
    case LIGHTMOTION_ERROR_MEMORY:
      return "out of memory";
    case LIGHTMOTION_ERROR_NO_FRAME:
      return "no frame has been processed yet";
    case LIGHTMOTION_ERROR_INTERNAL:
      return "internal error";
    default:
      return "unknown error";
  }
}

// ---- life -------------------------------------------------------------------------------------------------

lightmotion_detector* lightmotion_create(const char* configuration, char* message, size_t message_size) {
  if (configuration == nullptr) {
    tell(message, message_size, "the configuration is null");
    return nullptr;
  }
  return lightmotion_create_for(configuration, 0, 0, LIGHTMOTION_FORMAT_UNKNOWN, message, message_size);
}

lightmotion_detector* lightmotion_create_for(const char* configuration, int32_t width, int32_t height,
                                             int format, char* message, size_t message_size) {
  lightmotion_detector* made = nullptr;
  guarded(message, message_size, [&]() -> int {
    const Said said{message, message_size};
    if (width < 0 || height < 0 || !isFormat(format)) {
      tell(message, message_size, "invalid width, height or format");
      return LIGHTMOTION_ERROR_CONFIGURATION;
    }
    const std::string text(configuration == nullptr ? "{}" : configuration);
    const std::optional<Json::Value> document = parsed(text.c_str(), said);
    if (!document) return LIGHTMOTION_ERROR_CONFIGURATION;
    const lm::KnownFrame known{width, height, static_cast<lm::PixelFormat>(format)};
    std::optional<lm::HandleConfiguration> accepted = readIn(*document, text, known, said);
    if (!accepted) return LIGHTMOTION_ERROR_CONFIGURATION;
    made = new lightmotion_detector(*document, std::move(*accepted));
    return LIGHTMOTION_OK;
  });
  return made;
}

void lightmotion_destroy(lightmotion_detector* detector) { delete detector; }

int lightmotion_change(lightmotion_detector* detector, const char* changes, char* message,
                       size_t message_size) {
  return guarded(message, message_size, [&]() -> int {
    if (detector == nullptr || changes == nullptr) return LIGHTMOTION_ERROR_ARGUMENT;
    const Said said{message, message_size};
    const std::optional<Json::Value> wanted = parsed(changes, said);
    if (!wanted) return LIGHTMOTION_ERROR_CONFIGURATION;
    if (const char* key = fixedKeyIn(*wanted)) {
      tell(message, message_size,
           std::string("\"") + key + "\": cannot be changed (create another detector)");
      return LIGHTMOTION_ERROR_CONFIGURATION;
    }
    Json::Value document = merged(detector->document(), *wanted);
    // The outcome is no text, so that findings have no places in it.
    std::optional<lm::HandleConfiguration> accepted =
        readIn(document, "{}", knownOf(detector->configuration()), said);
    if (!accepted) return LIGHTMOTION_ERROR_CONFIGURATION;
    detector->change(std::move(document), std::move(*accepted));
    return LIGHTMOTION_OK;
  });
}

int lightmotion_reset(lightmotion_detector* detector) {
  if (detector == nullptr) return LIGHTMOTION_ERROR_ARGUMENT;
  detector->reset();
  return LIGHTMOTION_OK;
}

int lightmotion_relearn(lightmotion_detector* detector, int32_t x, int32_t y, int32_t width, int32_t height,
                        const void* mask, size_t stride) {
  const lm::compact::Area area{x, y, width, height};
  if (detector == nullptr || !isWithin(detector->configuration().frame, area))
    return LIGHTMOTION_ERROR_ARGUMENT;
  const std::size_t bytes = strideOf(stride, static_cast<std::size_t>(width), height);
  if (bytes == 0) return LIGHTMOTION_ERROR_ARGUMENT;
  return guarded([&]() -> int {
    detector->relearn(area, static_cast<const std::uint8_t*>(mask), bytes);
    return LIGHTMOTION_OK;
  });
}

// ---- frames -----------------------------------------------------------------------------------------------

int lightmotion_process(lightmotion_detector* detector, const void* pixels, size_t stride,
                        int64_t timestamp_ms, const lightmotion_box** boxes) {
  if (boxes != nullptr) *boxes = nullptr;
  if (detector == nullptr || pixels == nullptr) return LIGHTMOTION_ERROR_ARGUMENT;
  const std::size_t bytes = strideOf(stride, detector->rowBytes(), detector->configuration().frame.frmH);
  if (bytes == 0) return LIGHTMOTION_ERROR_ARGUMENT;
  const int count = guarded([&]() -> int {
    if (!detector->process(static_cast<const std::uint8_t*>(pixels), bytes, timestamp_ms)) {
      return LIGHTMOTION_ERROR_MEMORY;
    }
    return static_cast<int>(detector->boxes().size());
  });
  if (count < 0) detector->lost();
  if (count > 0 && boxes != nullptr) *boxes = detector->boxes().data();
  return count;
}

const char* lightmotion_json(lightmotion_detector* detector, size_t* length) {
  if (length != nullptr) *length = 0;
  if (detector == nullptr) return nullptr;
  const std::string* text = nullptr;
  guarded([&]() -> int {
    text = &detector->json();
    return LIGHTMOTION_OK;
  });
  if (text == nullptr) return nullptr;
  if (length != nullptr) *length = text->size();
  return text->c_str();
}

int lightmotion_foreground(const lightmotion_detector* detector, void* mask, size_t stride) {
  const lm::compact::Area all = wholeFrame(detector);
  return lightmotion_foreground_part(detector, all.x, all.y, all.width, all.height, mask, stride);
}

int lightmotion_foreground_part(const lightmotion_detector* detector, int32_t x, int32_t y, int32_t width,
                                int32_t height, void* mask, size_t stride) {
  const lm::compact::Area area{x, y, width, height};
  return copied(detector, area, mask, stride, 1, [&](std::uint8_t* to, std::size_t bytes) {
    detector->engine().copyForeground(area, to, bytes);
  });
}

int lightmotion_background(const lightmotion_detector* detector, void* pixels, size_t stride) {
  const lm::compact::Area all = wholeFrame(detector);
  return lightmotion_background_part(detector, all.x, all.y, all.width, all.height, pixels, stride);
}

int lightmotion_background_part(const lightmotion_detector* detector, int32_t x, int32_t y, int32_t width,
                                int32_t height, void* pixels, size_t stride) {
  const lm::compact::Area area{x, y, width, height};
  const std::size_t channels =
      detector == nullptr ? 1 : static_cast<std::size_t>(detector->configuration().frame.frmChn);
  return copied(detector, area, pixels, stride, channels, [&](std::uint8_t* to, std::size_t bytes) {
    detector->engine().copyBackground(area, to, bytes);
  });
}

// ---- queries ----------------------------------------------------------------------------------------------

const char* lightmotion_region_name(const lightmotion_detector* detector, int32_t index) {
  if (detector == nullptr || index < 0) return nullptr;
  const std::vector<std::string>& names = detector->configuration().regionNames;
  const auto place = static_cast<std::size_t>(index);
  return place < names.size() ? names[place].c_str() : nullptr;
}

int lightmotion_get_info(const lightmotion_detector* detector, lightmotion_info* info) {
  if (detector == nullptr || info == nullptr || info->struct_size < sizeof(info->struct_size)) {
    return LIGHTMOTION_ERROR_ARGUMENT;
  }
  lightmotion_info known = detector->info();
  known.struct_size = info->struct_size;
  std::memcpy(info, &known, std::min(sizeof known, info->struct_size));
  return LIGHTMOTION_OK;
}
