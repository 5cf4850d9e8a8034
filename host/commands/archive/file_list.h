// Expands the sources that the user named to the files of an archive run.
#pragma once

#include <string>
#include <vector>

namespace lm::host::commands::archive {

struct ArchiveFile {
  std::string path;  // absolute, with symbolic links resolved, so that a file has one name
  std::string why;   // why it cannot be used; else empty
};

// By the file name's extension, in any case.
bool is_video_name(const std::string& name);

// Files are kept; folders become the videos in them at any depth; patterns (*, ?, [...]) that are not files
// become their matches; "@LIST" becomes the files named by the lines of a file, "@-" those named on standard
// input. Sorted by path, without duplicates. Hidden files and files inside `results` are not found in folders
// and by patterns; unreadable entries are listed with the cause.
// Throws Failure (kRefused) for an address, an unreadable list, a pattern without a match, and if there are
// no files at all.
std::vector<ArchiveFile> list_files(const std::vector<std::string>& sources, const std::string& results);

}  // namespace lm::host::commands::archive
