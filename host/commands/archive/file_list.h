// From what the user names to the files of an archive run.
#pragma once

#include <string>
#include <vector>

namespace lm::host::commands::archive {

struct ArchiveFile {
  std::string path;  // absolute, with symbolic links followed, so that a file has one name
  std::string why;   // it cannot be used, for this reason; else empty
};

// By the end of its name, in capitals or not.
bool is_video_name(const std::string& name);

// Files stay what they are; folders become the videos in them at any depth; patterns (*, ?, [...]) that are
// no file become what they match; "@LIST" becomes what the lines of a file name, "@-" those of standard
// input. Sorted by path, each path once. What is hidden or inside `results` is never found in folders and by
// patterns, and what cannot be read is listed with the cause.
// Throws Failure (kRefused) for an address, a list that cannot be read, a pattern without a match, and when
// there is no file at all.
std::vector<ArchiveFile> list_files(const std::vector<std::string>& sources, const std::string& results);

}  // namespace lm::host::commands::archive
