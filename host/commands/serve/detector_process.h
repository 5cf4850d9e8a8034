// A detector in a process of its own: two of them can look at the same frames, and one that crashes or hangs
// takes nothing else with it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <opencv2/core.hpp>
#include <stop_token>
#include <string>

namespace lm::host::commands::serve {

struct DetectorKind {
  std::string plugin;                          // path; searched for when empty
  std::string program = "/proc/self/exe";      // what has the subcommand `detect`
  std::chrono::milliseconds patience{10'000};  // with which each answer is awaited
};

class DetectorProcess {
 public:
  // Throws Failure: kRefused when the plug-in refuses the document, with its reason. All waiting ends when
  // `stop` says so.
  DetectorProcess(const DetectorKind& kind, const std::string& document, std::stop_token stop = {});
  ~DetectorProcess();
  DetectorProcess(const DetectorProcess&) = delete;
  DetectorProcess& operator=(const DetectorProcess&) = delete;

  // Has the detector forget what it saw. Throws Failure, like the following.
  void restart();

  struct Answer {
    std::string result;                 // the plug-in's document; empty when nothing moved
    std::chrono::microseconds cost{0};  // that the plug-in took
  };
  Answer process(const cv::Mat& image, const std::string& timestamp);

 private:
  Answer ask(const std::string& text, const unsigned char* pixels, std::size_t length);
  [[noreturn]] void fail(bool too_late);
  int end();  // returns the exit status

  DetectorKind kind_;
  std::string document_;
  std::stop_token stop_;
  pid_t process_ = -1;
  int socket_ = -1;
};

}  // namespace lm::host::commands::serve
