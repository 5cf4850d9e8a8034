// The detector behind the entry points: owns the engine, configures it from the document, passes it every
// frame and keeps the result text for the host.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "config/polygon.h"
#include "objects/box.h"

class kAMBLE;

// One detector, from init() to terminate().
class lightMotion {
 public:
  lightMotion();
  ~lightMotion();  // calls terminate()
  lightMotion(const lightMotion&) = delete;
  lightMotion& operator=(const lightMotion&) = delete;

  // Configures the detector from the JSON document. Returns true on success. Returns false, after one or two
  // lines on standard output, when a frame size or channel count is below 1 (also when the document is not
  // JSON) or when there is no region of interest; the engine then remains until terminate(). Throws as
  // initialization does (entry_points.h).
  bool init(const char* config);

  // Processes one frame (see entry_points.h) and stores the length of the result text in *resultLen.
  // Returns 1.
  int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen);

  // Copies `resText` with its NUL into `out`, without a bound. Returns 1.
  int getRes(char* out);

  // Releases the engine and the mask copy. May be called again.
  void terminate();

  // Makes `resText` from `objList` and returns its length in bytes. `timestamp` must not be null.
  int genRes(const char* timestamp);

  // Reads the scalar settings of the document: fills frmW, frmH, frmChn and returns one "key value" entry for
  // each recognised key whose value is a JSON string, in a fixed order. Text that is not JSON gives a line on
  // standard output and an empty list. Throws std::invalid_argument and std::out_of_range ("stoi") for the
  // three sizes, Json::Exception when the root is not an object.
  std::vector<std::string> myjsonReader(std::string config);

  // Replaces the two lists by the document's "roi" and "ror" regions, vertices scaled to pixels with frmW and
  // frmH. False, with both lists untouched, when the text is not JSON. Throws std::invalid_argument and
  // std::out_of_range ("stof") for a coordinate, Json::Exception for a wrong JSON type.
  bool jsonReaderRoi(std::string config, std::vector<polygon>& include, std::vector<polygon>& exclude);

  kAMBLE* engine = nullptr;    // owned; null until init(), released by terminate()
  std::int32_t frmW = 0;       // frame width, pixels
  std::int32_t frmH = 0;       // frame height, pixels
  std::int32_t frmChn = 0;     // bytes per pixel of the host's frames
  std::uint64_t reserved = 0;  // 0
  std::string resText;         // result document of the last frame that had boxes, else empty
  // frmW x frmH bytes, 32-byte aligned, from the first frame on; freed with free()
  std::uint8_t* fgMaskCopy = nullptr;
  std::vector<boxRect> objList;  // boxes of the last frame
};
