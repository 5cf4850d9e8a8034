#include "tests/host/program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <stdexcept>

namespace program {

namespace fs = std::filesystem;

Folder::Folder() {
  std::string name = (fs::temp_directory_path() / "lightmotion-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
  path_ = name;
}

Folder::~Folder() { fs::remove_all(path_); }

std::vector<std::string> Folder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string read(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

void write(const std::string& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

pid_t start(const std::vector<std::string>& arguments, int output, int errors, unsigned long most_bytes) {
  std::vector<char*> words{const_cast<char*>(LIGHTMOTION_PROGRAM)};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const pid_t process = fork();
  if (process != 0) return process;
  // A test runner in the background may have passed on ignored signals.
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) std::signal(number, SIG_DFL);
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  const rlimit limit{most_bytes, most_bytes};
  if (most_bytes > 0) setrlimit(RLIMIT_FSIZE, &limit);
  execv(LIGHTMOTION_PROGRAM, words.data());
  _exit(127);
}

int wait_for(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

Outcome run(const std::vector<std::string>& arguments, unsigned long most_bytes) {
  const Folder folder;
  const int output = open((folder / "output").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  const int errors = open((folder / "errors").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  const int status = wait_for(start(arguments, output, errors, most_bytes));
  close(output);
  close(errors);
  return {status, read(folder / "output"), read(folder / "errors")};
}

Outcome run_fake(std::vector<std::string> arguments, unsigned long most_bytes) {
  arguments.insert(arguments.begin(), {"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN});
  return run(arguments, most_bytes);
}

}  // namespace program
