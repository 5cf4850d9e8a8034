#include "host/outputs/retention/sweep.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <set>
#include <system_error>

#include "host/base/quantity.h"
#include "host/base/rotation.h"

namespace lm::host::outputs::retention {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr std::string_view kTime = "0000-00-00T00-00-00.000Z";
constexpr auto kAbandoned = 24h;

struct Found {
  std::string time;  // in the name: sorts
  std::string path;
  std::uint64_t size;

  bool operator<(const Found& other) const { return std::tie(time, path) < std::tie(other.time, other.path); }
};

// The time in the name of a clip or a snapshot of a live source; empty if it is neither.
std::string event_time(std::string_view name) {
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  if (!base::has_form(name.substr(0, kTime.size()), kTime)) return "";
  std::string_view rest = name.substr(kTime.size());
  if (!rest.starts_with('-')) return "";
  rest.remove_prefix(1);
  const auto digits = std::ranges::find_if_not(rest, is_digit) - rest.begin();
  rest.remove_prefix(static_cast<std::size_t>(digits));
  const bool ours = digits >= 4 && (rest == "-motion.mp4" || rest == "-light.mp4" || rest == "-motion.jpg" ||
                                    rest == "-light.jpg");
  return ours ? std::string(name.substr(0, kTime.size())) : "";
}

// The name for which this is the temporary one, as PendingFile makes it: ".NAME.PROCESS-NUMBER.part".
std::string_view name_of_part(std::string_view name) {
  if (!name.starts_with('.') || !name.ends_with(".part")) return "";
  name = name.substr(1, name.size() - 6);
  return name.substr(0, name.rfind('.'));
}

using TimeIn = std::function<std::string(const std::string& name)>;

// The files in the folder for whose names `time_in` gives a time.
void collect(const std::string& folder, const TimeIn& time_in, base::WallTime now, std::set<Found>& all) {
  std::error_code error;
  const fs::path real = fs::canonical(folder, error);  // clips and snapshots may share a folder
  for (fs::directory_iterator entry(real, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    const bool is_part = name.starts_with('.');
    const std::string time = time_in(is_part ? std::string(name_of_part(name)) : name);
    struct stat facts {};
    if (time.empty() || lstat(entry->path().c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) continue;
    const bool abandoned = now - std::chrono::system_clock::from_time_t(facts.st_mtime) > kAbandoned;
    if (is_part && abandoned) unlink(entry->path().c_str());
    if (!is_part) all.insert({time, entry->path().string(), static_cast<std::uint64_t>(facts.st_size)});
  }
}

std::set<Found> all_files(const Places& places, base::WallTime now) {
  std::set<Found> all;
  for (const std::string& folder : places.folders) collect(folder, event_time, now, all);
  for (const std::string& file : places.files) {
    const fs::path path(file);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    collect(
        folder, [&](const std::string& name) { return base::rotated_at(path.filename().string(), name); },
        now, all);
  }
  return all;
}

}  // namespace

Swept sweep(const Places& places, const Limits& limits, base::WallTime now) {
  const std::set<Found> all = all_files(places, now);
  std::uint64_t total = 0;
  for (const Found& file : all) total += file.size;
  const std::string oldest_kept = limits.age ? base::file_time(now - *limits.age) : "";
  Swept swept;
  for (const Found& file : all) {
    const bool too_old = file.time < oldest_kept;
    const bool too_much = limits.size && total > *limits.size;
    if (!too_old && !too_much) break;
    if (unlink(file.path.c_str()) != 0) {
      if (errno != ENOENT)
        swept.trouble = file.path + " cannot be removed: " + std::generic_category().message(errno);
      continue;
    }
    total -= file.size;
    ++swept.files;
    swept.bytes += file.size;
    swept.newest = file.path;
    if (swept.oldest.empty()) swept.oldest = file.path;
  }
  return swept;
}

std::string report(const Swept& swept) {
  if (swept.files == 0) return "";
  std::string text = "removed " + std::to_string(swept.files) + (swept.files == 1 ? " file (" : " files (") +
                     base::size_text(swept.bytes) + ") beyond --keep or --keep-size: " + swept.oldest;
  if (swept.files > 1) text += " to " + swept.newest;
  return text;
}

}  // namespace lm::host::outputs::retention
