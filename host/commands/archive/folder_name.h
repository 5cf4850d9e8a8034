// The name of a file's result folder, and digests of settings.
#pragma once

#include <string>

namespace lm::host::commands::archive {

// Sixteen hexadecimal digits, the same for the same text on every machine (FNV-1a, 64 bits).
std::string digest(const std::string& text);

// The file's own name, then the digest of its whole path, because files in different folders may have the
// same name: "hall_1.mp4-a1b2c3d4e5f60718" for "/cam/hall 1.mp4". Letters, digits, . _ - and non-ASCII
// characters are kept; other characters become underscores. Never hidden, at most 128 bytes.
std::string folder_name(const std::string& path);

}  // namespace lm::host::commands::archive
