#include "host/commands/archive/file_list.h"

#include <glob.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/base/failure.h"
#include "host/base/shown_address.h"
#include "host/base/whole_file.h"

namespace lm::host::commands::archive {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 28> kVideoNames{
    "264", "265",   "3gp",  "asf", "avi",  "flv", "h264", "h265", "hevc", "m2ts",
    "m4v", "mjpeg", "mjpg", "mkv", "mov",  "mp4", "mpeg", "mpg",  "mts",  "mxf",
    "nut", "ogv",   "ts",   "vob", "webm", "wmv", "y4m",  "f4v"};

std::string real_path(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(path, error);
  return error ? fs::absolute(path, error).lexically_normal().string() : real.string();
}

class Expansion {
 public:
  explicit Expansion(const std::string& results) : results_(real_path(results)) {}

  void add_named(const std::string& name) {
    if (name.find("://") != std::string::npos) {
      throw base::Failure(base::kRefused,
                          base::shown_address(name) + ": --out needs files, not stream addresses");
    }
    std::error_code error;
    if (fs::is_directory(name, error)) {
      add_folder(name);
    } else if (fs::exists(fs::symlink_status(name, error)) ||
               name.find_first_of("*?[") == std::string::npos) {
      add_file(name);
    } else {
      add_matches(name);
    }
  }

  void add_list(const std::string& list) {
    std::optional<std::string> text;
    if (list == "-") {
      text.emplace(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
    } else {
      text = base::read_text(list);
    }
    if (!text) {
      throw base::Failure(base::kRefused,
                          "the list " + list + " cannot be read: " + std::generic_category().message(errno));
    }
    add_lines(*text);
  }

  std::vector<ArchiveFile> sorted() {
    std::ranges::stable_sort(files_, {}, &ArchiveFile::path);
    const auto same = [](const ArchiveFile& a, const ArchiveFile& b) { return a.path == b.path; };
    files_.erase(std::unique(files_.begin(), files_.end(), same), files_.end());
    return std::move(files_);
  }

 private:
  // Lines end with a zero byte if there is one (find -print0), because names may contain line feeds.
  void add_lines(const std::string& text) {
    const char end = text.find('\0') != std::string::npos ? '\0' : '\n';
    for (std::size_t begin = 0; begin < text.size();) {
      const std::size_t stop = std::min(text.find(end, begin), text.size());
      std::string line = text.substr(begin, stop - begin);
      if (end == '\n' && line.ends_with('\r')) line.pop_back();
      begin = stop + 1;
      std::error_code error;
      if (line.empty()) continue;
      fs::is_directory(line, error) ? add_folder(line) : add_file(line);
    }
  }

  void add_matches(const std::string& pattern) {
    glob_t matches{};
    const int result = glob(pattern.c_str(), GLOB_NOSORT, nullptr, &matches);
    const std::unique_ptr<glob_t, void (*)(glob_t*)> freed(&matches, &globfree);
    if (result != 0) throw base::Failure(base::kRefused, pattern + " matches no file");
    for (std::size_t i = 0; i < matches.gl_pathc; ++i) {
      std::error_code error;
      const std::string match = matches.gl_pathv[i];
      if (is_result(match)) continue;
      fs::is_directory(match, error) ? add_folder(match) : add_file(match);
    }
  }

  // Links to folders are not followed: they may form loops.
  void add_folder(const std::string& folder) {
    if (is_result(folder)) return;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
      const std::string name = entry->path().filename().string();
      std::error_code unknown;
      if (name.starts_with('.')) continue;
      if (entry->is_directory(unknown)) {
        if (!entry->is_symlink(unknown)) add_folder(entry->path().string());
      } else if (is_video_name(name)) {
        add_file(entry->path().string());
      }
    }
    if (error) files_.push_back({real_path(folder), error.message()});
  }

  void add_file(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    const std::string why = error ? error.message() : fs::is_regular_file(status) ? "" : "not a regular file";
    files_.push_back({real_path(path), why});
  }

  bool is_result(const std::string& path) const {
    const std::string real = real_path(path);
    return real == results_ || real.starts_with(results_ + "/");
  }

  std::string results_;
  std::vector<ArchiveFile> files_;
};

}  // namespace

bool is_video_name(const std::string& name) {
  std::string end = fs::path(name).extension().string();
  std::ranges::transform(end, end.begin(), [](unsigned char c) { return std::tolower(c); });
  return !end.empty() && std::ranges::find(kVideoNames, end.substr(1)) != kVideoNames.end();
}

std::vector<ArchiveFile> list_files(const std::vector<std::string>& sources, const std::string& results) {
  Expansion expansion(results);
  for (const std::string& source : sources) {
    source.starts_with('@') ? expansion.add_list(source.substr(1)) : expansion.add_named(source);
  }
  std::vector<ArchiveFile> files = expansion.sorted();
  if (files.empty()) throw base::Failure(base::kRefused, "no video files found");
  return files;
}

}  // namespace lm::host::commands::archive
