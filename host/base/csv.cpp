#include "host/base/csv.h"

namespace lm::host::base {
namespace {

std::string quoted(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string cell = "\"";
  for (const char c : text) cell.append(c == '"' ? 2 : 1, c);
  return cell + "\"";
}

}  // namespace

std::string csv_row(const std::vector<std::string>& cells) {
  std::string row;
  for (const std::string& cell : cells) row.append(&cell == &cells.front() ? "" : ",").append(quoted(cell));
  return row + "\r\n";
}

}  // namespace lm::host::base
