// Runs the built program, with temporary folders for its output.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace program {

// A temporary folder, removed by the destructor.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::vector<std::string> names() const;  // of all files, including hidden ones, sorted

 private:
  std::filesystem::path path_;
};

std::string read(const std::string& file);
void write(const std::string& file, const std::string& text);
std::vector<std::string> lines(const std::string& text);

struct Outcome {
  int status = -1;     // as a shell reports it
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs the program to its end. `most_bytes`: file size limit; 0: none.
Outcome run(const std::vector<std::string>& arguments, unsigned long most_bytes = 0);

// ... with the plug-in of tests/host/fake_plugin.
Outcome run_fake(std::vector<std::string> arguments, unsigned long most_bytes = 0);

// Starts the program with these as its standard output and error.
pid_t start(const std::vector<std::string>& arguments, int output, int errors, unsigned long most_bytes = 0);

// Waits for it; returns the status as a shell reports it.
int wait_for(pid_t process);

}  // namespace program
