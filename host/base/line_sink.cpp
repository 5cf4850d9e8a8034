#include "host/base/line_sink.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace lm::host::base {
namespace {

bool is_file(int descriptor) {
  struct stat facts {};
  return fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
}

}  // namespace

LineSink::LineSink(const std::string& file, bool live, const Rotation& rotation) : live_(live) {
  if (live && !file.empty() && Journal::takes(file)) {
    journal_.emplace(file, "{\"frame\":", rotation);
  } else if (live && file.empty() && is_file(STDOUT_FILENO)) {
    journal_.emplace(STDOUT_FILENO, "standard output");
  } else if (!file.empty()) {
    pending_.emplace(file);
    file_.reset(std::fopen(pending_->path().c_str(), "we"));
    if (!file_) fail();
    out_ = file_.get();
  }
}

void LineSink::write(const std::string& line) {
  ++lines_;
  if (journal_) return journal_->append(line + "\n");
  errno = 0;
  std::fwrite(line.data(), 1, line.size(), out_);
  std::fputc('\n', out_);
  if (!file_ || live_) std::fflush(out_);
  if (std::ferror(out_) != 0) fail();
}

void LineSink::tick() {
  if (journal_) journal_->tick();
}

void LineSink::finish() {
  if (journal_) journal_->finish();
  if (!file_) return;
  errno = 0;
  if (std::fclose(file_.release()) != 0) fail();
}

void LineSink::commit() {
  if (pending_) pending_->commit();
}

void LineSink::fail() const { cannot_write(pending_ ? pending_->target() : "standard output", errno); }

}  // namespace lm::host::base
