#include "host/base/outage.h"

#include "host/base/notice.h"

namespace lm::host::base {
namespace {

constexpr std::chrono::minutes kQuiet{1};

}  // namespace

void Outage::failed(const std::string& cause) {
  if (reported_ || (quiet_until_ && now_() < *quiet_until_)) return;
  warn(cause + "; the run continues and tries again");
  reported_ = true;
}

void Outage::worked() {
  if (!reported_) return;
  warn(name_ + " can be written again" +
       (skipped_ == 0 ? "" : "; skipped in the meantime: " + std::to_string(skipped_)));
  reported_ = false;
  skipped_ = 0;
  quiet_until_ = now_() + kQuiet;
}

}  // namespace lm::host::base
