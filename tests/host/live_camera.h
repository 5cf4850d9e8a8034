// Live streams for the tests: a camera on the loopback and the program that watches it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace stream {

// A process with pipes to its standard input and output. Ends with the object.
class Process {
 public:
  // `errors`: a file for its standard error.
  Process(const std::vector<std::string>& command, const std::string& errors);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void write(const std::string& line);

  // The next line of its output; empty when there is none within this time.
  std::string line(std::chrono::milliseconds longest);

  void signal(int number);
  int wait();  // the status as a shell shows it

 private:
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string read_;
};

// tests/host/live_camera.py with a file of H.264 pictures.
class Camera {
 public:
  Camera(const program::Folder& folder, const std::string& file);

  std::string address() const;
  std::string ask(const std::string& command);  // the answer to it

 private:
  Process process_;
  std::string port_;
};

// The program, watching a camera.
class Watcher {
 public:
  Watcher(const program::Folder& folder, const std::vector<std::string>& arguments);

  // Has the camera send pictures, one by one and no faster than cameras do, until a result line comes that
  // fulfils this; empty when none does.
  std::string watch(Camera& camera, const std::function<bool(const std::string&)>& wanted,
                    int pictures = 1500);

  int stop();  // with Ctrl-C
  int wait() { return process_.wait(); }
  std::string errors() const { return program::read(errors_); }
  const std::vector<std::string>& lines() const { return lines_; }

 private:
  std::string errors_;
  Process process_;
  std::vector<std::string> lines_;
};

}  // namespace stream
