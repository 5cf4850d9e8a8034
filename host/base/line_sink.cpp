#include "host/base/line_sink.h"

#include <cerrno>

namespace lm::host::base {

LineSink::LineSink(const std::string& file) {
  if (file.empty()) return;
  pending_.emplace(file);
  file_.reset(std::fopen(pending_->path().c_str(), "we"));
  if (!file_) fail();
  out_ = file_.get();
}

void LineSink::write(const std::string& line) {
  errno = 0;
  std::fwrite(line.data(), 1, line.size(), out_);
  std::fputc('\n', out_);
  if (!file_) std::fflush(out_);
  if (std::ferror(out_) != 0) fail();
  ++lines_;
}

void LineSink::finish() {
  if (!file_) return;
  errno = 0;
  if (std::fclose(file_.release()) != 0) fail();
}

void LineSink::commit() {
  if (pending_) pending_->commit();
}

void LineSink::fail() const { cannot_write(pending_ ? pending_->target() : "standard output", errno); }

}  // namespace lm::host::base
