#include "host/commands/tune/side_by_side.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace lm::host::commands::tune {
namespace {

class Work {
 public:
  Work(std::size_t count, const std::function<void(std::size_t)>& work,
       const std::function<void(std::size_t)>& done)
      : count_(count), work_(work), done_(done) {}

  void in_one_thread() {
    std::unique_lock lock(mutex_);
    while (begun_ < count_ && !failure_) {
      const std::size_t item = begun_++;
      lock.unlock();
      const std::exception_ptr failure = failure_of(item);
      lock.lock();
      if (failure && !failure_) failure_ = failure;
      if (!failure) done_(++finished_);
    }
  }

  void finish() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  std::exception_ptr failure_of(std::size_t item) const {
    try {
      work_(item);
      return nullptr;
    } catch (...) {
      return std::current_exception();
    }
  }

  const std::size_t count_;
  const std::function<void(std::size_t)>& work_;
  const std::function<void(std::size_t)>& done_;
  std::mutex mutex_;
  std::size_t begun_ = 0;
  std::size_t finished_ = 0;
  std::exception_ptr failure_;
};

}  // namespace

void side_by_side(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work,
                  const std::function<void(std::size_t)>& done) {
  Work all(count, work, done);
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < std::min(count, jobs); ++i)
      threads.emplace_back([&] { all.in_one_thread(); });
  }
  all.finish();
}

}  // namespace lm::host::commands::tune
