#include "tests/package/shell.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

std::vector<std::string> linesOf(const std::string& command) {
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char part[4096];
  while (const std::size_t length = fread(part, 1, sizeof part, pipe)) output.append(part, length);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);

  std::vector<std::string> lines;
  std::istringstream stream(output);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> entriesOf(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<std::string> entries;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') entries.push_back(line);
  }
  return entries;
}
