#include "host/commands/serve/worker.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

#include "host/base/failure.h"
#include "host/commands/serve/wire.h"
#include "host/detector/plugin.h"

namespace lm::host::commands::serve {
namespace {

// Limits for the configuration and the picture.
constexpr std::uint64_t kMostRequestText = std::uint64_t{16} << 20;
constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 30;

struct Question {
  std::string text;
  std::vector<unsigned char> pixels;
};

bool receive(int file, Question& question) {
  DetectorRequest request;
  if (!receive_all(file, &request, sizeof request)) return false;
  if (request.text > kMostRequestText || request.pixels > kMostPixels) return false;
  question.text.resize(request.text);
  question.pixels.resize(request.pixels);
  return receive_all(file, question.text.data(), question.text.size()) &&
         receive_all(file, question.pixels.data(), question.pixels.size());
}

class Worker {
 public:
  explicit Worker(std::string path) : path_(std::move(path)) {}

  // Returns the plug-in's result document; throws Failure if there is none.
  std::string answer(const Question& question) {
    if (!plugin_) plugin_.emplace(detector::find_plugin(path_, detector::program_folder()));
    if (!question.pixels.empty()) return plugin_->process(question.pixels.data(), question.text);
    if (started_) {
      plugin_->restart(question.text);
    } else if (const std::string refusal = plugin_->start(question.text); !refusal.empty()) {
      throw base::Failure(base::kRefused, "the plug-in refuses it: " + refusal);
    }
    started_ = true;
    return "";
  }

 private:
  std::string path_;
  std::optional<detector::Plugin> plugin_;
  bool started_ = false;
};

bool send(int file, bool failed, const std::string& text, std::chrono::steady_clock::duration time) {
  const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
  const DetectorAnswer answer{failed ? 1U : 0U, text.size(), static_cast<std::uint64_t>(taken)};
  return send_all(file, &answer, sizeof answer) && send_all(file, text.data(), text.size());
}

// Keeps standard output for the answers: what the plug-in prints is discarded.
int take_over_standard_streams() {
  const int socket = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (socket < 0 || nowhere < 0) throw base::Failure(base::kTrouble, "cannot open a file");
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
  close(nowhere);
  return socket;
}

}  // namespace

int work_as_detector(const std::string& plugin) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // a hanging plug-in would not notice that its server has exited
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) std::signal(number, SIG_IGN);  // the server ends it
  Worker worker(plugin);
  const int socket = take_over_standard_streams();
  Question question;
  while (receive(socket, question)) {
    const auto begin = std::chrono::steady_clock::now();
    std::string text;
    bool failed = false;
    try {
      text = worker.answer(question);
    } catch (const base::Failure& failure) {
      text = failure.what();
      failed = true;
    }
    if (!send(socket, failed, text, std::chrono::steady_clock::now() - begin)) break;
  }
  return base::kDone;
}

}  // namespace lm::host::commands::serve
