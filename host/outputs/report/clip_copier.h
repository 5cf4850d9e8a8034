// Parts of a video file, with its sound, without coding anything anew.
#pragma once

#include <chrono>
#include <string>

#include "host/base/pending_file.h"

namespace lm::host::outputs::report {

// The container that takes the file's video and sound as they are ("mp4", else "matroska"): tried with the
// first packets. Null when none does, and for what is no file.
const char* container_for_copy(const std::string& file);

// Copies what lies between two times, as the file states them, from the key frame before. Throws Failure
// (kTrouble).
void copy_clip(const std::string& file, const char* container, std::chrono::microseconds from,
               std::chrono::microseconds to, const base::PendingFile& clip);

}  // namespace lm::host::outputs::report
