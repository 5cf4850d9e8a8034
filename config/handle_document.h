// The configuration of a detector by handle: the plug-in's document, numbers as numbers, and keys of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "config/check/coverage.h"
#include "config/check/finding.h"
#include "config/pixel_format.h"
#include "config/settings.h"
#include "objects/extent.h"

namespace Json {
class Value;
}

namespace lm {

struct HandleConfiguration {
  Settings settings;
  FrameSize frame;  // 0 if unknown
  FormatRow format{};
  std::vector<std::string> regionNames;  // of the regions of interest
  check::Coverage coverage;
  double absorbSeconds = 0;  // 0: as lifeStatic says; infinite: for ever
  Extent extent = Extent::core;
  std::optional<double> joinGap;  // a fraction of the longer side; none: as the plug-in
  int peeled = 3;
};

struct HandleReading {
  std::vector<check::Finding> findings;              // in the order of the text
  std::optional<HandleConfiguration> configuration;  // none if a finding is an error
};

// What stands for keys that a document leaves out; 0 and unknown for nothing.
struct KnownFrame {
  std::int32_t width = 0;
  std::int32_t height = 0;
  PixelFormat format = PixelFormat::unknown;
  bool sizeRequired = true;  // otherwise, without a size, nothing is checked that depends on it
};

// As the configuration has it.
const char* nameOf(Extent extent);

// `document`: an object, parsed from `text`. Members that are null count as absent.
HandleReading readHandleDocument(const Json::Value& document, const std::string& text,
                                 const KnownFrame& known);

}  // namespace lm
