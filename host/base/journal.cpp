#include "host/base/journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/json_text.h"
#include "host/base/pending_file.h"

namespace lm::host::base {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostWaiting = std::size_t{1} << 20U;
constexpr std::chrono::seconds kBetweenSyncs{1};

// The file exists, or can be created once there is room.
bool is_shortage(int error) { return error == ENOSPC || error == EDQUOT; }

std::string read_at(int file, std::uint64_t from, std::size_t length) {
  std::string text(length, '\0');
  const ssize_t got = pread(file, text.data(), length, static_cast<off_t>(from));
  text.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
  return text;
}

// The name of a new file is on the disk only when its folder is.
void sync_folder(const std::string& path) {
  const std::string folder = fs::path(path).parent_path().string();
  const int file = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  fsync(file);
  close(file);
}

std::string real_path(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? path : real.string();
}

}  // namespace

bool Journal::takes(const std::string& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  return !fs::exists(status) || fs::is_regular_file(status);
}

Journal::Journal(const std::string& path, std::string begin, Rotation rotation, Now now)
    : path_(real_path(path)),
      name_(path),
      begin_(std::move(begin)),
      headed_(begin_.ends_with('\n')),
      rotation_(rotation),
      now_(std::move(now)),
      outage_(path),
      hangups_(hangups()) {
  try {
    open();
  } catch (const std::system_error& error) {
    if (!is_shortage(error.code().value())) cannot_write(name_, error.code().value());
    report(error.code().value());
  }
}

Journal::Journal(int file, std::string name)
    : name_(name), now_(std::chrono::system_clock::now), outage_(std::move(name)), file_(file) {}

Journal::~Journal() {
  if (!path_.empty() && file_ >= 0) close(file_);
}

void Journal::open() {
  const int file = ::open(path_.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0) throw std::system_error(errno, std::generic_category());
  file_ = file;
  try {
    if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
      throw Failure(kTrouble, name_ + " cannot be written: another process is writing to it");
    check_begin();
  } catch (...) {
    close(std::exchange(file_, -1));
    throw;
  }
  struct stat facts {};
  fstat(file, &facts);
  size_ = static_cast<std::uint64_t>(facts.st_size);
  last_ = size_ > 0 ? std::chrono::system_clock::from_time_t(facts.st_mtime) : now_();
  if (size_ == 0) sync_folder(path_);
  repair();
  if (size_ == 0 && headed_ && !waiting_.starts_with(begin_)) waiting_.insert(0, begin_);
}

// Appending to a file of another kind would spoil it.
void Journal::check_begin() const {
  const std::string begin = read_at(file_, 0, begin_.size());
  const bool zeros = begin.find_first_not_of('\0') == std::string::npos;
  if (zeros || begin_.starts_with(begin)) return;
  throw Failure(kTrouble, name_ + " exists and has other contents; rename it, or choose another name");
}

// A power cut can also leave zeros after the last line.
void Journal::repair() {
  constexpr std::size_t kPiece = 65'536;
  std::string torn;
  std::uint64_t from = size_;
  std::size_t feed = std::string::npos;
  while (from > 0 && feed == std::string::npos) {
    const std::size_t length = std::min<std::uint64_t>(kPiece, from);
    from -= length;
    torn.insert(0, read_at(file_, from, length));
    feed = torn.rfind('\n');
  }
  if (feed != std::string::npos) {
    torn.erase(0, feed + 1);
    from += feed + 1;
  }
  if (torn.empty()) return;
  if (!headed_ && parse_json(torn).isObject() && ::write(file_, "\n", 1) == 1) {
    ++size_;
  } else if (ftruncate(file_, static_cast<off_t>(from)) == 0) {
    size_ = from;
  }
}

void Journal::report(int error) {
  outage_.failed(name_ + " cannot be written: " + std::generic_category().message(error));
}

void Journal::try_to_open() {
  try {
    open();
  } catch (const std::system_error& error) {
    report(error.code().value());
  } catch (const Failure& failure) {
    outage_.failed(failure.what());
  }
}

void Journal::append(const std::string& line) {
  if (waiting_.size() + line.size() > kMostWaiting) {
    outage_.skip();
  } else {
    waiting_ += line;
  }
  write_waiting();
  if (waiting_.empty()) last_ = now_();
}

void Journal::tick() {
  write_waiting();
  if (unsynced_ && std::chrono::steady_clock::now() - synced_ >= kBetweenSyncs) sync();
}

void Journal::finish() {
  write_waiting();
  if (unsynced_) sync();
}

// A line that was partly written to the old file is whole in the new one.
void Journal::follow_hangups() {
  if (path_.empty() || hangups_ == hangups()) return;
  hangups_ = hangups();
  if (file_ >= 0) close(std::exchange(file_, -1));
  written_ = 0;
}

void Journal::rotate_if_due() {
  if (file_ < 0 || size_ <= (headed_ ? begin_.size() : 0) || written_ > 0) return;
  const auto day = [](WallTime time) { return std::chrono::floor<std::chrono::days>(time); };
  const bool by_day = rotation_.daily && day(now_()) != day(last_);
  const bool by_size = rotation_.bytes > 0 && !waiting_.empty() && size_ + waiting_.size() > rotation_.bytes;
  if (by_day || by_size) rotate();
}

// Never over an existing file: the clock may have been set back.
void Journal::rotate() {
  const fs::path target = rotated_name(path_, rotation_, last_);
  fs::path name = target;
  std::error_code error;
  for (int number = 2; fs::exists(fs::symlink_status(name, error)); ++number) {
    name = target.parent_path() /
           (target.stem().string() + "-" + std::to_string(number) + target.extension().string());
  }
  if (unsynced_) sync();
  fs::rename(path_, name, error);
  if (error) return outage_.failed(name_ + " cannot be renamed: " + error.message());
  close(std::exchange(file_, -1));
}

void Journal::write_waiting() {
  follow_hangups();
  rotate_if_due();
  if (file_ < 0) try_to_open();
  if (file_ < 0) return;
  while (!waiting_.empty()) {
    const ssize_t count = ::write(file_, waiting_.data() + written_, waiting_.size() - written_);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return report(count < 0 ? errno : EIO);
    written_ += static_cast<std::size_t>(count);
    size_ += static_cast<std::uint64_t>(count);
    unsynced_ = true;
    if (const std::size_t feed = waiting_.rfind('\n', written_ - 1); feed != std::string::npos) {
      waiting_.erase(0, feed + 1);
      written_ -= feed + 1;
    }
    if (waiting_.empty()) outage_.worked();
  }
}

void Journal::sync() {
  // Pipes and some file systems cannot.
  if (fdatasync(file_) != 0 && errno != EINVAL && errno != EROFS) report(errno);
  unsynced_ = false;
  synced_ = std::chrono::steady_clock::now();
}

}  // namespace lm::host::base
