#include "host/report/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "host/failure.h"

namespace lm::host {

void write_bytes(const PendingFile& file, const std::string& bytes) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(file.path().c_str(), "we"), &std::fclose);
  const bool taken = out && std::fwrite(bytes.data(), 1, bytes.size(), out.get()) == bytes.size() &&
                     std::fclose(out.release()) == 0;
  if (taken) return;
  throw Failure(kTrouble, file.target() + " cannot be written: " + std::generic_category().message(errno));
}

void write_file(const std::string& path, const std::string& bytes) {
  PendingFile file(path);
  write_bytes(file, bytes);
  file.commit();
}

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (!error && !std::filesystem::is_directory(path))
    error = std::make_error_code(std::errc::not_a_directory);
  if (error) throw Failure(kTrouble, path + " cannot be created: " + error.message());
  const PendingFile trial(path + "/trial");  // report it now, not at the first event
}

}  // namespace lm::host
