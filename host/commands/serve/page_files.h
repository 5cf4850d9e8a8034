// The page's files, compiled in.
#pragma once

#include <string_view>
#include <vector>

namespace lm::host::commands::serve {

struct PageFile {
  std::string_view name;  // such as "main.js"
  std::string_view text;
};

const std::vector<PageFile>& page_files();

}  // namespace lm::host::commands::serve
