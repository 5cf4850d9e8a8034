// Reads and writes whole files.
#pragma once

#include <optional>
#include <string>

#include "host/base/pending_file.h"

namespace lm::host::base {

// The whole file; none, with the cause in errno, if it cannot be read.
std::optional<std::string> read_text(const std::string& path);

// The same, but throws Failure (kRefused) with the file and the cause.
std::string required_text(const std::string& path);

// Writes all bytes to the pending file. Throws Failure (kTrouble), as do the functions below.
void write_bytes(const PendingFile& file, const std::string& bytes);

// Creates or replaces the file; it appears when complete.
void write_file(const std::string& path, const std::string& bytes);

// Creates the folder and missing parents, and checks that it is writable.
void make_folder(const std::string& path);

}  // namespace lm::host::base
