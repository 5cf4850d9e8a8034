#include "host/commands/serve/config_file.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "host/base/whole_file.h"

namespace lm::host::commands::serve {
namespace {

namespace fs = std::filesystem;

// Only those who could read the file before can read the new one.
void write_with(fs::perms permissions, const std::string& path, const std::string& text) {
  base::PendingFile file(path);
  std::error_code ignored;
  if (permissions != fs::perms::unknown) fs::permissions(file.path(), permissions, ignored);
  base::write_bytes(file, text);
  file.commit();
}

}  // namespace

std::string save_document(const std::string& file, const std::string& text) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  const fs::perms permissions = fs::exists(status) ? status.permissions() : fs::perms::unknown;
  std::string backup;
  if (const std::optional<std::string> before = base::read_text(file)) {
    backup = file + ".bak";
    write_with(permissions, backup, *before);
  }
  write_with(permissions, file, text);
  return backup;
}

}  // namespace lm::host::commands::serve
