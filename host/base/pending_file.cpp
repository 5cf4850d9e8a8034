#include "host/base/pending_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/base/failure.h"

namespace lm::host::base {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& target, const std::error_code& error) {
  throw Failure(kTrouble, target + " cannot be written: " + error.message());
}

// Creates an empty file of a new name beside `target`.
std::string create_beside(const fs::path& target) {
  for (int number = 0;; ++number) {
    const std::string mark = std::to_string(getpid()) + "-" + std::to_string(number);
    const std::string name =
        std::string(".").append(target.filename().string()).append(".").append(mark) + ".part";
    const fs::path path = target.parent_path() / name;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0) {
      close(file);
      return path.string();
    }
    if (errno != EEXIST) cannot_write(target.string(), errno);
  }
}

}  // namespace

void cannot_write(const std::string& target, int error) {
  throw Failure(kTrouble, target + " cannot be written: " +
                              (error != 0 ? std::generic_category().message(error) : "write error"));
}

PendingFile::PendingFile(const std::string& target) : target_(target), final_path_(target) {
  std::error_code error;
  const fs::file_status status = fs::status(target, error);
  if (fs::is_directory(status)) fail(target, std::make_error_code(std::errc::is_a_directory));
  if (fs::exists(status)) final_path_ = fs::canonical(target, error).string();
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    path_ = target;
    return;
  }
  path_ = create_beside(final_path_);
  pending_ = true;
}

PendingFile::~PendingFile() {
  if (pending_) unlink(path_.c_str());
}

void PendingFile::commit() {
  if (!pending_) return;
  std::error_code error;
  fs::rename(path_, final_path_, error);
  if (error) fail(target_, error);
  pending_ = false;
}

}  // namespace lm::host::base
