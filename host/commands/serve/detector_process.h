// A detector in its own process: two can analyse the same frames, and a crash or hang affects nothing else.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <opencv2/core.hpp>
#include <stop_token>
#include <string>

namespace lm::host::commands::serve {

struct DetectorKind {
  std::string plugin;                          // path; searched for if empty
  std::string program = "/proc/self/exe";      // has the subcommand `detect`
  std::chrono::milliseconds patience{10'000};  // time limit of each answer
};

class DetectorProcess {
 public:
  // Throws Failure: kRefused with the plug-in's reason if it refuses the document. A stop request ends all
  // waiting.
  DetectorProcess(const DetectorKind& kind, const std::string& document, std::stop_token stop = {});
  ~DetectorProcess();
  DetectorProcess(const DetectorProcess&) = delete;
  DetectorProcess& operator=(const DetectorProcess&) = delete;

  // Resets the detector's state. Throws Failure, as do the functions below.
  void restart();

  struct Answer {
    std::string result;                 // the plug-in's document; empty without motion
    std::chrono::microseconds cost{0};  // the plug-in's processing time
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
