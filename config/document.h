// The configuration document: from JSON text to the parameter list and the regions. Needs no detector.
//
// All functions throw Json::Exception for a JSON value of the wrong kind.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "config/polygon.h"

namespace lm {

// Frame size, with fields named as the keys of the document.
struct FrameSize {
  std::int32_t frmW = 0;    // width, pixels
  std::int32_t frmH = 0;    // height, pixels
  std::int32_t frmChn = 0;  // bytes per pixel
};

// What an engine is configured with.
struct Configuration {
  std::vector<std::string> parameters;  // "key value" entries for kAMBLE::setParam
  std::vector<polygon> include;
  std::vector<polygon> exclude;
  std::string messages;  // lines for standard output that say why the document was refused
};

// Converts a whole document; `size` keeps the values that the document does not give. Returns false, with a
// message, when a size is below 1 or there is no region of interest. Throws as the functions below.
bool readConfiguration(const std::string& text, FrameSize& size, Configuration& configuration);

// Replaces `parameters` with one "key value" entry for each scalar setting whose value is a JSON string, in
// the order of scalarKeys, and stores the sizes among them. Returns false, without entries, when `text` is
// not JSON. Throws std::invalid_argument and std::out_of_range ("stoi") for a size; sizes before it are
// stored.
bool readScalars(const std::string& text, FrameSize& size, std::vector<std::string>& parameters);

// Replaces both lists by the regions of the document, with vertices in pixels. Returns false, with both lists
// unchanged, when `text` is not JSON. Throws std::invalid_argument and std::out_of_range ("stof") for a
// coordinate. (regions.cpp)
bool readRegions(const std::string& text, const FrameSize& size, std::vector<polygon>& include,
                 std::vector<polygon>& exclude);

// Printed for a document that is not JSON.
inline constexpr const char* notJsonMessage = "Error: json configuration is incorrect format \n";

}  // namespace lm
