// Files beside the running program.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace lm::bench {

inline std::string beside_program(const char* name) {
  std::error_code error;
  return (std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / name).string();
}

}  // namespace lm::bench
