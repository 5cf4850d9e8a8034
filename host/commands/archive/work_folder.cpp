#include "host/commands/archive/work_folder.h"

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/base/failure.h"

namespace lm::host::commands::archive {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, const std::error_code& error) {
  throw base::Failure(base::kTrouble, path + " cannot be written: " + error.message());
}

std::error_code last_error() { return {errno, std::generic_category()}; }

std::string lock_path(const std::string& folder) { return folder + "/lock"; }

// False if its last owner removed it between our opening and locking it.
bool still_there(const std::string& path, int file) {
  struct stat by_name {};
  struct stat by_file {};
  return stat(path.c_str(), &by_name) == 0 && fstat(file, &by_file) == 0 &&
         by_name.st_ino == by_file.st_ino && by_name.st_dev == by_file.st_dev;
}

void remove_all_but_the_lock(const std::string& folder) {
  std::error_code ignored;
  for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
       entry.increment(ignored)) {
    std::error_code stays;
    if (entry->path() != lock_path(folder)) fs::remove_all(entry->path(), stays);
  }
}

}  // namespace

WorkFolder::Lock WorkFolder::lock(const std::string& folder) {
  const std::string path = lock_path(folder);
  for (;;) {
    if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) fail(folder, last_error());
    Lock file(std::fopen(path.c_str(), "ae"));
    if (!file && errno == ENOENT) continue;  // its last owner has just removed the folder
    if (!file) fail(path, last_error());
    if (flock(fileno(file.get()), LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK) fail(path, last_error());
      return nullptr;
    }
    if (still_there(path, fileno(file.get()))) return file;
  }
}

WorkFolder::WorkFolder(const std::string& archive, const std::string& name)
    : folder_(archive + "/." + name + ".work"), final_(archive + "/" + name), lock_(lock(folder_)) {}

std::optional<WorkFolder> WorkFolder::claim(const std::string& archive, const std::string& name) {
  WorkFolder folder(archive, name);
  if (!folder.lock_) return std::nullopt;
  folder.make_room();
  return folder;
}

void WorkFolder::tidy(const std::string& archive, const std::string& name) {
  if (fs::exists(archive + "/." + name + ".work")) WorkFolder(archive, name);
}

// The results are below a name that no other run has used, so that a process that outlived a killed run
// cannot write into them.
void WorkFolder::make_room() {
  remove_all_but_the_lock(folder_);
  std::string unique = folder_ + "/XXXXXX";
  if (mkdtemp(unique.data()) == nullptr) fail(folder_, last_error());
  results_ = unique + "/results";
  if (mkdir(results_.c_str(), 0777) != 0) fail(results_, last_error());
}

WorkFolder::~WorkFolder() {
  if (!lock_) return;
  remove_all_but_the_lock(folder_);
  unlink(lock_path(folder_).c_str());
  rmdir(folder_.c_str());
}

void WorkFolder::publish() {
  std::error_code error;
  if (fs::exists(final_)) fs::rename(final_, folder_ + "/replaced", error);
  if (!error) fs::rename(results_, final_, error);
  if (error) fail(final_, error);
}

}  // namespace lm::host::commands::archive
