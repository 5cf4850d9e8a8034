// Copies parts of a video file, with sound, without re-encoding.
#pragma once

#include <chrono>
#include <string>

#include "host/base/pending_file.h"

namespace lm::host::outputs::report {

// The container that can hold the file's video and sound unchanged ("mp4", else "matroska"), tested with the
// first packets. Null if none can, or if the source is not a file.
const char* container_for_copy(const std::string& file);

// Copies the span between two times of the file, starting at the preceding key frame. Throws Failure
// (kTrouble).
void copy_clip(const std::string& file, const char* container, std::chrono::microseconds from,
               std::chrono::microseconds to, const base::PendingFile& clip);

}  // namespace lm::host::outputs::report
