// Runs the built program, and makes room for what it writes.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace program {

// A folder of its own for a test, gone with the object.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::vector<std::string> names() const;  // of all files, hidden ones too, sorted

 private:
  std::filesystem::path path_;
};

std::string read(const std::string& file);
void write(const std::string& file, const std::string& text);
std::vector<std::string> lines(const std::string& text);

struct Outcome {
  int status = -1;     // as a shell shows it
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs the program to its end. `most_bytes`: how large it may make a file; 0 for no limit.
Outcome run(const std::vector<std::string>& arguments, unsigned long most_bytes = 0);

// ... with the plug-in of tests/host/fake_plugin.
Outcome run_fake(std::vector<std::string> arguments, unsigned long most_bytes = 0);

// Starts the program with these as its standard output and error.
pid_t start(const std::vector<std::string>& arguments, int output, int errors, unsigned long most_bytes = 0);

// Waits for it; the status as a shell shows it.
int wait_for(pid_t process);

}  // namespace program
