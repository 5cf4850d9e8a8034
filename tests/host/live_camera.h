// Live streams for tests: a camera on the loopback interface, and the program reading it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace stream {

// A process with pipes to its standard input and output. Killed by the destructor.
class Process {
 public:
  // `errors`: a file for its standard error.
  Process(const std::vector<std::string>& command, const std::string& errors);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void write(const std::string& line);

  // The next line of its output; empty on timeout.
  std::string line(std::chrono::milliseconds longest);

  void signal(int number);
  int wait();  // returns the status as a shell reports it

 private:
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  std::string read_;
};

// Options with which ffmpeg writes H.264 that the camera accepts.
constexpr const char* kH264 =
    "-c:v libx264 -g 25 -keyint_min 25 -sc_threshold 0 -bf 0 -x264-params aud=1:repeat-headers=1 -f h264";

// A file with two still scenes of two seconds each, a dark and a bright one, with a key frame every second.
// Empty if it cannot be created.
std::string still_scenes(const program::Folder& folder, const char* coding = kH264);

// Of result lines.
bool is_note(const std::string& line);  // on a lost connection
bool has_boxes(const std::string& line);

// tests/host/live_camera.py with a file of H.264 or JPEG pictures.
class Camera {
 public:
  // `protocol`: of its address, rtsp or http.
  Camera(const program::Folder& folder, const std::string& file, std::string protocol = "rtsp");

  std::string address() const;
  std::string ask(const std::string& command);  // returns the answer

 private:
  Process process_;
  std::string protocol_;
  std::string port_;
};

// The program reading a camera.
class Watcher {
 public:
  Watcher(const program::Folder& folder, const std::vector<std::string>& arguments);

  // Makes the camera send pictures one by one, at most at a camera's rate, until a result line is as wanted;
  // empty if none is.
  std::string watch(Camera& camera, const std::function<bool(const std::string&)>& wanted,
                    int pictures = 1500);

  void idle(std::chrono::milliseconds time);  // without sending pictures

  void signal(int number) { process_.signal(number); }
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
