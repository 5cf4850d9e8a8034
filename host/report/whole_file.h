// Files that are made in one piece.
#pragma once

#include <string>

#include "host/pending_file.h"

namespace lm::host {

// Writes all bytes where `file` wants them. Throws Failure (kTrouble), like the following.
void write_bytes(const PendingFile& file, const std::string& bytes);

// Puts a file under its name at once.
void write_file(const std::string& path, const std::string& bytes);

// Makes the folder and those above it when they are missing, and finds out whether it takes files.
void make_folder(const std::string& path);

}  // namespace lm::host
