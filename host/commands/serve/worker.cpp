#include "host/commands/serve/worker.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <exception>
#include <memory>
#include <opencv2/core.hpp>
#include <utility>
#include <vector>

#include "host/base/failure.h"
#include "host/commands/serve/wire.h"
#include "host/detector/detector.h"

namespace lm::host::commands::serve {
namespace {

// Limits for the configuration and the picture.
constexpr std::uint64_t kMostRequestText = std::uint64_t{16} << 20;
constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 30;

struct Question {
  DetectorRequest head;
  std::string text;
  std::vector<unsigned char> pixels;
};

bool receive(int file, Question& question) {
  const DetectorRequest& head = question.head;
  if (!receive_all(file, &question.head, sizeof question.head)) return false;
  if (head.text > kMostRequestText || head.pixels > kMostPixels) return false;
  question.text.resize(head.text);
  question.pixels.resize(head.pixels);
  return receive_all(file, question.text.data(), question.text.size()) &&
         receive_all(file, question.pixels.data(), question.pixels.size());
}

class Worker {
 public:
  explicit Worker(std::string plugin) : plugin_(std::move(plugin)) {}

  // Returns the boxes; throws Failure if there are none to return.
  detector::Boxes answer(Question& question) {
    const cv::Size size(question.head.width, question.head.height);
    if (question.pixels.empty()) {
      start(question.text, size);
      return {};
    }
    if (!detector_ || question.pixels.size() != 3 * static_cast<std::size_t>(size.area()))
      throw base::Failure(base::kTrouble, "a frame that does not fit");
    return detector_->process(cv::Mat(size, CV_8UC3, question.pixels.data()), question.head.milliseconds);
  }

 private:
  // The first time with its document, later with the same.
  void start(const std::string& document, cv::Size size) {
    if (detector_) {
      detector_->restart();
    } else {
      detector_ = detector::make_detector(plugin_, {"", document}, size);
    }
  }

  std::string plugin_;
  std::unique_ptr<detector::Detector> detector_;
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
      text = bytes_of(worker.answer(question));
    } catch (const std::exception& failure) {
      text = failure.what();
      failed = true;
    }
    if (!send(socket, failed, text, std::chrono::steady_clock::now() - begin)) break;
  }
  return base::kDone;
}

}  // namespace lm::host::commands::serve
