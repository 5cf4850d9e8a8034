// Where the results of one file grow until they are whole.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace lm::host::commands::archive {

// A hidden folder beside the results that only one process at a time has, on all machines that share the
// file system. What a killed process left in it is removed. Whoever fills `path()` publishes it at the end;
// without that the destructor removes it, and results that were there before stay.
class WorkFolder {
 public:
  // For the results named `name` in `archive`. Nothing while another process has it. Throws Failure
  // (kTrouble) when it cannot be made.
  static std::optional<WorkFolder> claim(const std::string& archive, const std::string& name);

  // Removes what a killed process left, if nobody has the folder.
  static void tidy(const std::string& archive, const std::string& name);

  WorkFolder(WorkFolder&&) noexcept = default;
  WorkFolder& operator=(WorkFolder&&) = delete;
  ~WorkFolder();

  const std::string& path() const { return results_; }  // empty at first
  const std::string& final_path() const { return final_; }

  // Gives the results their name, in place of what had it. Throws Failure (kTrouble).
  void publish();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using Lock = std::unique_ptr<std::FILE, Close>;

  WorkFolder(const std::string& archive, const std::string& name);
  void make_room();
  static Lock lock(const std::string& folder);

  std::string folder_;
  std::string final_;
  std::string results_;
  Lock lock_;
};

}  // namespace lm::host::commands::archive
