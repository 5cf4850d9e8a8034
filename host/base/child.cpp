#include "host/base/child.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sstream>
#include <system_error>

#include "host/base/failure.h"

namespace lm::host::base {
namespace {

constexpr int kNotStarted = 127;

// Between fork and exec: async-signal-safe calls only.
[[noreturn]] void become(char* const* words, const char* messages, pid_t parent) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kNotStarted);  // the parent died before prctl
  const int input = open("/dev/null", O_RDONLY);
  const int output = open(messages, O_WRONLY | O_CREAT | O_APPEND, 0666);
  if (input < 0 || output < 0) _exit(kNotStarted);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execv("/proc/self/exe", words);
  _exit(kNotStarted);
}

}  // namespace

pid_t start_child(const std::vector<std::string>& arguments, const std::string& messages) {
  std::string name = "lightmotion";
  std::vector<std::string> texts = arguments;
  std::vector<char*> words{name.data()};
  for (std::string& text : texts) words.push_back(text.data());
  words.push_back(nullptr);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) become(words.data(), messages.c_str(), parent);
  if (child < 0) {
    throw Failure(kTrouble, "cannot start a process: " + std::generic_category().message(errno));
  }
  return child;
}

int exit_status(int status) { return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status); }

std::string cause_of(const std::string& messages, int status, const std::string& source) {
  if (status == kDone) return "";
  if (status > 128) {
    const char* name = sigdescr_np(status - 128);
    return std::string("the process was terminated by a signal: ") + (name != nullptr ? name : "unknown");
  }
  const std::string program = "lightmotion: ";
  const std::string named = one_line(source) + ": ";
  std::string cause;
  std::istringstream lines(messages);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(program) || line.starts_with(program + "warning: ")) continue;
    cause = line.substr(program.size());
    if (cause.starts_with(named)) cause.erase(0, named.size());
  }
  return cause.empty() ? "the process exited with status " + std::to_string(status) : cause;
}

}  // namespace lm::host::base
