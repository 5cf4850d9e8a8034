#include "host/commands/serve/detector_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "host/base/child.h"
#include "host/base/deadline.h"
#include "host/base/failure.h"
#include "host/base/time_text.h"
#include "host/commands/serve/wire.h"
#include "host/detector/analysis_size.h"

namespace lm::host::commands::serve {
namespace {

// No detector has more boxes.
constexpr std::uint64_t kMostAnswer = std::uint64_t{64} << 20;

// Owns the file actions and attributes for posix_spawn.
class SpawnPlan {
 public:
  explicit SpawnPlan(int socket) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_adddup2(&actions_, socket, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, socket, STDOUT_FILENO);
    posix_spawnattr_init(&attributes_);
    sigset_t all;
    sigfillset(&all);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  int run(pid_t& process, const std::string& program, char* const* words) {
    return posix_spawn(&process, program.c_str(), &actions_, &attributes_, words, environ);
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

pid_t spawn(const DetectorKind& kind, int socket) {
  std::vector<std::string> texts{"lightmotion", "detect"};
  if (!kind.plugin.empty()) texts.insert(texts.end(), {"--plugin", kind.plugin});
  std::vector<char*> words;
  words.reserve(texts.size() + 1);
  for (std::string& text : texts) words.push_back(text.data());
  words.push_back(nullptr);
  pid_t process = -1;
  const int error = SpawnPlan(socket).run(process, kind.program, words.data());
  if (error == 0) return process;
  throw base::Failure(base::kTrouble, "cannot start a detector: " + std::generic_category().message(error));
}

}  // namespace

DetectorProcess::DetectorProcess(const DetectorKind& kind, const std::string& document, cv::Size frame,
                                 std::stop_token stop)
    : kind_(kind), document_(document), frame_(frame), stop_(std::move(stop)) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw base::Failure(base::kTrouble, "cannot start a detector: " + std::generic_category().message(errno));
  }
  socket_ = ends[0];
  try {
    process_ = spawn(kind_, ends[1]);
    close(std::exchange(ends[1], -1));
    restart();
  } catch (...) {
    if (ends[1] >= 0) close(ends[1]);
    end();
    throw;
  }
}

DetectorProcess::~DetectorProcess() { end(); }

int DetectorProcess::end() {
  if (socket_ >= 0) close(std::exchange(socket_, -1));
  if (process_ <= 0) return 0;
  kill(process_, SIGKILL);  // no effect if it has exited already
  int status = 0;
  waitpid(std::exchange(process_, -1), &status, 0);
  return base::exit_status(status);
}

void DetectorProcess::restart() { ask(document_, {}, 0); }

DetectorProcess::Answer DetectorProcess::process(const cv::Mat& image, std::int64_t milliseconds) {
  const cv::Mat analysed = detector::resized(image, frame_);
  return ask("", analysed.isContinuous() ? analysed : analysed.clone(), milliseconds);
}

DetectorProcess::Answer DetectorProcess::ask(const std::string& document, const cv::Mat& image,
                                             std::int64_t milliseconds) {
  if (process_ <= 0) throw base::Failure(base::kTrouble, "the detector has ended");
  base::Deadline deadline;
  deadline.allow(kind_.patience);
  const auto gives_up = [&] { return stop_.stop_requested() || deadline.passed(); };
  const DetectorRequest request{frame_.width, frame_.height, document.size(),
                                image.total() * image.elemSize(), milliseconds};
  DetectorAnswer head;
  std::string bytes;
  const bool heard = send_all(socket_, &request, sizeof request, gives_up) &&
                     send_all(socket_, document.data(), request.text, gives_up) &&
                     send_all(socket_, image.data, request.pixels, gives_up) &&
                     receive_all(socket_, &head, sizeof head, gives_up) && head.bytes <= kMostAnswer;
  if (heard) bytes.resize(head.bytes);
  if (!heard || !receive_all(socket_, bytes.data(), head.bytes, gives_up)) fail(deadline.passed());
  if (head.failed != 0) throw base::Failure(image.empty() ? base::kRefused : base::kTrouble, bytes);
  std::optional<detector::Boxes> boxes = boxes_from(bytes);
  if (!boxes) throw base::Failure(base::kTrouble, "the detector failed: an answer that cannot be read");
  return {std::move(*boxes), std::chrono::microseconds(head.microseconds)};
}

// Reports why a process does not answer.
void DetectorProcess::fail(bool too_late) {
  if (stop_.stop_requested()) throw base::Failure(base::kTrouble, "stopped");
  const int status = end();
  if (too_late) {
    throw base::Failure(base::kTrouble,
                        "no answer from the detector for " + base::seconds_text(kind_.patience) + " s");
  }
  throw base::Failure(base::kTrouble, "the detector failed: " + base::cause_of("", status, ""));
}

}  // namespace lm::host::commands::serve
