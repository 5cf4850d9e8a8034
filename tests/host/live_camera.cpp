#include "tests/host/live_camera.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace stream {

using namespace std::chrono_literals;

Process::Process(const std::vector<std::string>& command, const std::string& errors) {
  int in[2], out[2];
  if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const int log = open(errors.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  process_ = fork();
  if (process_ == 0) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) std::signal(number, SIG_DFL);
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    execvp(words[0], words.data());
    _exit(127);
  }
  for (const int end : {in[0], out[1], log}) close(end);
  input_ = in[1];
  output_ = out[0];
}

Process::~Process() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    wait();
  }
  close(input_);
  close(output_);
}

void Process::write(const std::string& line) {
  const std::string text = line + "\n";
  if (::write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    throw std::runtime_error("the process does not listen");
}

std::string Process::line(std::chrono::milliseconds longest) {
  const auto end = std::chrono::steady_clock::now() + longest;
  for (;;) {
    if (const std::size_t feed = read_.find('\n'); feed != std::string::npos) {
      const std::string line = read_.substr(0, feed);
      read_.erase(0, feed + 1);
      return line;
    }
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd output{output_, POLLIN, 0};
    if (left < 0ms || poll(&output, 1, static_cast<int>(left.count())) <= 0) return "";
    char piece[4096];
    const ssize_t length = read(output_, piece, sizeof piece);
    if (length <= 0) return "";
    read_.append(piece, static_cast<std::size_t>(length));
  }
}

void Process::signal(int number) { kill(process_, number); }

int Process::wait() {
  const int status = program::wait_for(process_);
  process_ = -1;
  return status;
}

std::string still_scenes(const program::Folder& folder, const char* coding) {
  std::string file = folder / "pictures";
  const std::string command =
      std::string(
          "ffmpeg -v error -f lavfi "
          "-i \"color=0x404040:s=160x120:r=25:d=2,drawbox=20:20:60:60:0x808080:fill\" "
          "-f lavfi -i \"color=0xa0a0a0:s=160x120:r=25:d=2,drawbox=80:40:60:60:0x202020:fill\" "
          "-filter_complex concat ") +
      coding + " " + file;
  return std::system(command.c_str()) == 0 ? file : "";
}

bool is_note(const std::string& line) {
  return line.find("\"note\":\"reconnected after ") != std::string::npos;
}

bool has_boxes(const std::string& line) { return line.find("\"boxes\":") != std::string::npos; }

Camera::Camera(const program::Folder& folder, const std::string& file, std::string protocol)
    : process_({"python3", LIGHTMOTION_CAMERA, file}, folder / "camera.errors"),
      protocol_(std::move(protocol)),
      port_(process_.line(20s)) {
  if (port_.empty()) throw std::runtime_error(program::read(folder / "camera.errors"));
}

std::string Camera::address() const { return protocol_ + "://127.0.0.1:" + port_ + "/camera"; }

std::string Camera::ask(const std::string& command) {
  process_.write(command);
  return process_.line(30s);
}

Watcher::Watcher(const program::Folder& folder, const std::vector<std::string>& arguments)
    : errors_(folder / "errors"),
      process_(
          [&] {
            std::vector<std::string> command{LIGHTMOTION_PROGRAM, "run"};
            command.insert(command.end(), arguments.begin(), arguments.end());
            return command;
          }(),
          errors_) {}

std::string Watcher::watch(Camera& camera, const std::function<bool(const std::string&)>& wanted,
                           int pictures) {
  for (int i = 0; i < pictures; ++i) {
    if (camera.ask("send 1") != "done") return "";
    for (std::string line = process_.line(40ms); !line.empty(); line = process_.line(0ms)) {
      lines_.push_back(line);
      if (wanted(line)) return line;
    }
  }
  return "";
}

void Watcher::idle(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  for (auto left = time; left > 0ms;
       left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now())) {
    if (std::string line = process_.line(left); !line.empty()) lines_.push_back(std::move(line));
  }
}

int Watcher::stop() {
  process_.signal(SIGINT);
  const int status = process_.wait();
  for (std::string line = process_.line(0ms); !line.empty(); line = process_.line(0ms))
    lines_.push_back(line);
  return status;
}

}  // namespace stream
