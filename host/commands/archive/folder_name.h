// What the result folder of a file is called, and the sums that tell settings apart.
#pragma once

#include <string>

namespace lm::host::commands::archive {

// Sixteen hexadecimal digits, the same for the same text on every machine (FNV-1a, 64 bits).
std::string digest(const std::string& text);

// The file's own name for people, then the digest of its whole path, because files in several folders may
// share a name: "hall_1.mp4-a1b2c3d4e5f60718" for "/cam/hall 1.mp4". Letters, digits and . _ - are kept, and
// so is what is not ASCII; anything else becomes an underscore. Never hidden, never longer than 128 bytes.
std::string folder_name(const std::string& path);

}  // namespace lm::host::commands::archive
