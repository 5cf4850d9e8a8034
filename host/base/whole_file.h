// Files that are read, or written, in one piece.
#pragma once

#include <optional>
#include <string>

#include "host/base/pending_file.h"

namespace lm::host::base {

// The whole file; nothing, and the cause in errno, when it cannot be read.
std::optional<std::string> read_text(const std::string& path);

// The same. Throws Failure (kRefused) naming the file and the cause.
std::string required_text(const std::string& path);

// Writes all bytes to the pending file. Throws Failure (kTrouble), like the following.
void write_bytes(const PendingFile& file, const std::string& bytes);

// Creates the file, or replaces it; it has its name when it is complete.
void write_file(const std::string& path, const std::string& bytes);

// Creates the folder and its missing parents, and checks that files can be written there.
void make_folder(const std::string& path);

}  // namespace lm::host::base
