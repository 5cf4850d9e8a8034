#include "host/outputs/retention/retention.h"

#include <condition_variable>
#include <cstdio>
#include <utility>

#include "host/base/notice.h"

namespace lm::host::outputs::retention {
namespace {

constexpr std::chrono::minutes kInterval{1};

}  // namespace

Retention::Retention(Places places, Limits limits)
    : places_(std::move(places)),
      limits_(limits),
      thread_([this](const std::stop_token& stop) { work(stop); }) {}

void Retention::work(const std::stop_token& stop) {
  std::string trouble;
  while (!stop.stop_requested()) {
    const Swept swept = sweep(places_, limits_, std::chrono::system_clock::now());
    std::unique_lock lock(mutex_);
    if (std::string text = report(swept); !text.empty()) reports_.push_back(std::move(text));
    if (!swept.trouble.empty() && swept.trouble != trouble) troubles_.push_back(swept.trouble);
    trouble = swept.trouble;
    std::condition_variable_any().wait_for(lock, stop, kInterval, [] { return false; });
  }
}

void Retention::print_reports() {
  const std::scoped_lock lock(mutex_);
  for (const std::string& text : reports_) {
    base::clear_bar();
    std::fprintf(stderr, "lightmotion: %s\n", text.c_str());
  }
  for (const std::string& text : troubles_) base::warn(text);
  reports_.clear();
  troubles_.clear();
}

}  // namespace lm::host::outputs::retention
