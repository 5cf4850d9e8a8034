#include "bench/child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <limits>
#include <stdexcept>

namespace lm::bench {
namespace {

// Status of the child.
int send(int end, std::size_t count, const std::function<std::vector<double>()>& measure) {
  try {
    const std::vector<double> values = measure();
    const auto bytes = static_cast<ssize_t>(count * sizeof(double));
    return values.size() == count && write(end, values.data(), count * sizeof(double)) == bytes ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_frames: %s\n", error.what());
    return 1;
  }
}

}  // namespace

std::vector<double> in_child(std::size_t count, const std::function<std::vector<double>()>& measure) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  std::fflush(stdout);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) _exit(send(ends[1], count, measure));
  close(ends[1]);
  std::vector<double> values(count);
  const auto bytes = static_cast<ssize_t>(count * sizeof(double));
  if (read(ends[0], values.data(), count * sizeof(double)) != bytes) {
    values.assign(count, std::numeric_limits<double>::quiet_NaN());
  }
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return values;
}

}  // namespace lm::bench
