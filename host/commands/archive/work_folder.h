// The folder in which one file's results are created until complete.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace lm::host::commands::archive {

// A hidden folder beside the results, locked by one process at a time across all machines that share the file
// system. Removes what a killed process left in it. Without publish() the destructor removes the folder, and
// earlier results stay.
class WorkFolder {
 public:
  // For the results named `name` in `archive`. None if another process has locked it. Throws Failure
  // (kTrouble) if it cannot be created.
  static std::optional<WorkFolder> claim(const std::string& archive, const std::string& name);

  // Removes what a killed process left, unless the folder is locked.
  static void tidy(const std::string& archive, const std::string& name);

  WorkFolder(WorkFolder&&) noexcept = default;
  WorkFolder& operator=(WorkFolder&&) = delete;
  ~WorkFolder();

  const std::string& path() const { return results_; }  // initially empty
  const std::string& final_path() const { return final_; }

  // Replaces the results at their final name. Throws Failure (kTrouble).
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
