#include "host/commands/tune/side_by_side.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <list>
#include <system_error>

#include "host/base/failure.h"
#include "host/base/interrupt.h"

namespace lm::host::commands::tune {
namespace {

constexpr int kPatience = 100;  // milliseconds between looks at the interrupt

void write_all(int file, const std::string& bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const ssize_t written = write(file, bytes.data() + at, bytes.size() - at);
    if (written < 0) return;
    at += static_cast<std::size_t>(written);
  }
}

// In the child. The pipe carries the answer; the exit status states whether it is a result or an error
// message.
[[noreturn]] void serve(int file, std::size_t item, const std::function<std::string(std::size_t)>& work) {
  int status = base::kDone;
  std::string answer;
  try {
    answer = work(item);
  } catch (const base::Failure& failure) {
    status = failure.status();
    answer = failure.what();
  } catch (const std::exception& error) {
    status = base::kTrouble;
    answer = error.what();
  }
  write_all(file, answer);
  _exit(status);  // nothing of the parent's may be cleaned up here
}

class Child {
 public:
  Child(std::size_t item, const std::function<std::string(std::size_t)>& work) : item_(item) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) fail();
    std::fflush(nullptr);  // otherwise the child would have a copy of unwritten output
    process_ = fork();
    if (process_ == 0) {
      close(ends[0]);
      serve(ends[1], item, work);
    }
    close(ends[1]);
    answer_from_ = ends[0];
    if (process_ < 0) fail();
  }
  ~Child() {
    if (answer_from_ >= 0) close(answer_from_);
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  std::size_t item() const { return item_; }
  int answer_from() const { return answer_from_; }

  // Reads what has arrived; false at the end.
  bool take() {
    std::array<char, 65536> piece{};
    const ssize_t length = read(answer_from_, piece.data(), piece.size());
    if (length > 0) answer_.append(piece.data(), static_cast<std::size_t>(length));
    return length > 0 || (length < 0 && errno == EINTR);
  }

  // After that: the result. Throws Failure.
  std::string result() {
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    if (!WIFEXITED(status)) {
      throw base::Failure(base::kTrouble,
                          "the plug-in was terminated by signal " + std::to_string(WTERMSIG(status)));
    }
    if (WEXITSTATUS(status) != base::kDone)
      throw base::Failure(static_cast<base::ExitStatus>(WEXITSTATUS(status)), answer_);
    return std::move(answer_);
  }

 private:
  [[noreturn]] static void fail() {
    throw base::Failure(base::kTrouble, "cannot start a process: " + std::generic_category().message(errno));
  }

  std::size_t item_;
  pid_t process_ = -1;
  int answer_from_ = -1;
  std::string answer_;
};

// The children with data to read.
std::vector<bool> heard(const std::list<Child>& children) {
  std::vector<pollfd> waiting;
  waiting.reserve(children.size());
  for (const Child& child : children) waiting.push_back({child.answer_from(), POLLIN, 0});
  poll(waiting.data(), waiting.size(), kPatience);
  std::vector<bool> ready;
  ready.reserve(waiting.size());
  for (const pollfd& file : waiting) ready.push_back(file.revents != 0);
  return ready;
}

}  // namespace

std::vector<std::string> side_by_side(std::size_t count, std::size_t jobs,
                                      const std::function<std::string(std::size_t)>& work,
                                      const std::function<void(std::size_t)>& done) {
  std::vector<std::string> results(count);
  std::list<Child> running;
  std::size_t started = 0;
  std::size_t finished = 0;
  while (finished < count) {
    if (base::interrupted() != 0)
      throw base::Failure(base::kTrouble, "interrupted before a proposal was found");
    while (started < count && running.size() < std::max<std::size_t>(jobs, 1)) {
      running.emplace_back(started++, work);
    }
    const std::vector<bool> ready = heard(running);
    auto child = running.begin();
    for (const bool has_news : ready) {
      if (!has_news || child->take()) {
        ++child;
        continue;
      }
      if (base::interrupted() != 0) break;
      results[child->item()] = child->result();
      child = running.erase(child);
      done(++finished);
    }
  }
  return results;
}

}  // namespace lm::host::commands::tune
