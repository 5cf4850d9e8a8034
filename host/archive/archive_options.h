// What belongs to runs over many files on the command line.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lm::host {

struct ArchiveOptions {
  std::vector<std::string> sources;           // as named; see list_files
  std::string out;                            // folder for the results; empty for a run over a single source
  int jobs = 0;                               // processes at a time; 0 for one a processor
  std::string shard;                          // see parse_shard
  bool force = false;                         // files that are done are done again
  std::chrono::microseconds file_timeout{0};  // after which a file is given up; 0: never
  std::string figures;                        // where a child tells its parent what its run came to

  // The other options that were given, one argument each, for the runs over the single files.
  std::vector<std::string> passed_on;
};

// Adds the sources and the options.
void add_archive_options(CLI::App& run, ArchiveOptions& options);

// Once the command line is parsed: fills `passed_on`. Returns what is wrong with the options; empty when
// nothing is.
std::string complete_archive_options(const CLI::App& run, ArchiveOptions& options);

// The options of the run over one file whose outputs go into `folder`: options that name an output file name
// it there, and the lines of results have a file of their own.
std::vector<std::string> options_for_folder(const std::vector<std::string>& passed_on,
                                            const std::string& folder);

}  // namespace lm::host
