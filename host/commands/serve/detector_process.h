// A detector in its own process: a crash or hang affects nothing else, and two plug-ins can analyse the same
// frames.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <stop_token>
#include <string>

#include "host/detector/box.h"

namespace lm::host::commands::serve {

struct DetectorKind {
  std::string plugin;                          // see make_detector
  std::string program = "/proc/self/exe";      // has the subcommand `detect`
  std::chrono::milliseconds patience{10'000};  // time limit of each answer
};

class DetectorProcess {
 public:
  // `frame`: the size in which images are analysed. Throws Failure: kRefused with the reason if the document
  // is refused. A stop request ends all waiting.
  DetectorProcess(const DetectorKind& kind, const std::string& document, cv::Size frame,
                  std::stop_token stop = {});
  ~DetectorProcess();
  DetectorProcess(const DetectorProcess&) = delete;
  DetectorProcess& operator=(const DetectorProcess&) = delete;

  // Resets the detector's state. Throws Failure, as do the functions below.
  void restart();

  struct Answer {
    detector::Boxes boxes;
    std::chrono::microseconds cost{0};  // the detector's processing time
  };
  // An image of any size; it is scaled.
  Answer process(const cv::Mat& image, std::int64_t milliseconds);

 private:
  Answer ask(const std::string& document, const cv::Mat& image, std::int64_t milliseconds);
  [[noreturn]] void fail(bool too_late);
  int end();  // returns the exit status

  DetectorKind kind_;
  std::string document_;
  cv::Size frame_;
  std::stop_token stop_;
  pid_t process_ = -1;
  int socket_ = -1;
};

}  // namespace lm::host::commands::serve
