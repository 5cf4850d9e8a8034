#include "host/commands/archive/archive_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string_view>

#include "host/base/number_option.h"

namespace lm::host::commands::archive {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr std::array<std::string_view, 7> kOwn{"--out",   "--jobs",    "--shard",   "--file-timeout",
                                               "--force", "--figures", "--progress"};
constexpr std::array<std::string_view, 7> kOutputs{"--output",    "--annotate", "--events", "--heatmap",
                                                   "--snapshots", "--clips",    "--report"};
constexpr std::array<std::string_view, 3> kTaken{"run.json", "messages.txt", "figures.json"};

bool contains(const auto& words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

// Splits "--name=value"; the value is empty if there is none.
std::pair<std::string, std::string> parts(const std::string& argument) {
  const std::size_t equals = std::min(argument.find('='), argument.size());
  return {argument.substr(0, equals), argument.substr(std::min(equals + 1, argument.size()))};
}

bool names_output(const std::string& argument) { return contains(kOutputs, parts(argument).first); }

std::vector<std::string> given_options(const CLI::App& run) {
  std::vector<std::string> arguments;
  for (const CLI::Option* option : run.get_options()) {
    const std::string name = option->get_name();
    if (option->count() == 0 || option->get_positional() || contains(kOwn, name)) continue;
    const bool flag = option->get_items_expected_max() == 0;
    for (const std::string& value : option->results()) {
      arguments.push_back(name);
      if (!flag) arguments.back().append("=").append(value);
    }
  }
  return arguments;
}

std::string misplaced_output(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    if (!names_output(argument)) continue;
    const auto [name, value] = parts(argument);
    const bool plain = !value.empty() && value.find('/') == std::string::npos && value != "." &&
                       value != ".." && value != "-";
    std::string fault = name;
    if (!plain)
      return fault.append(" with --out must be a plain file name, not \"").append(value).append("\"");
    if (contains(kTaken, value))
      return fault.append(": the name ").append(value).append(" is reserved with --out");
  }
  return "";
}

// A run over a single source.
std::string single_misuse(const ArchiveOptions& options) {
  std::error_code ignored;
  if (options.jobs != 0 || options.force || !options.shard.empty() || options.file_timeout > 0us) {
    return "--jobs, --shard, --file-timeout and --force need --out DIR";
  }
  if (options.sources.size() > 1) return "several sources need --out DIR: " + options.sources[1];
  if (options.sources.empty()) return "";
  const std::string& source = options.sources.front();
  if (source.starts_with('@')) return "a list needs --out DIR: " + source;
  if (fs::is_directory(source, ignored)) return "a folder needs --out DIR: " + source;
  return "";
}

}  // namespace

void add_archive_options(CLI::App& run, ArchiveOptions& options) {
  run.add_option(
         "SOURCE", options.sources,
         "Video file, stream address or camera (/dev/video0); default: the built-in scene. With --out also "
         "folders, patterns and @LIST (a file with one path per line), and several of these")
      ->type_name("");
  const char* group = "Many files";
  run.add_option(
         "--out", options.out,
         "Process many files; each file's results go to its own folder in DIR. Resumes an interrupted run")
      ->type_name("DIR")
      ->group(group);
  base::add_number(
      run, {"--jobs", "N", "Files processed at the same time", {1, 4096, "", true}, "one per processor"},
      [&options](double jobs) { options.jobs = static_cast<int>(jobs); })
      ->group(group);
  run.add_option("--shard", options.shard,
                 "Process only every Nth file, starting with the Ith (1 to N); slurm: take both from the "
                 "Slurm array task")
      ->type_name("I/N")
      ->group(group);
  base::add_number(
      run, {"--file-timeout", "SECONDS", "Per-file time limit", {0.001, base::kUnlimited, "s"}, "none"},
      [&options](double seconds) {
        options.file_timeout = std::chrono::microseconds(std::llround(seconds * 1e6));
      })
      ->group(group);
  run.add_flag("--force", options.force, "Reprocess finished files")->group(group);
}

std::string complete_archive_options(const CLI::App& run, ArchiveOptions& options) {
  if (options.out.empty()) return single_misuse(options);
  if (options.sources.empty()) return "--out needs at least one source";
  options.passed_on = given_options(run);
  // The broker identifies a camera by its name, and here many files are processed at once.
  if (run.count("--mqtt") > 0) return "--mqtt needs a single source; it cannot be combined with --out";
  return misplaced_output(options.passed_on);
}

std::vector<std::string> options_for_folder(const std::vector<std::string>& passed_on,
                                            const std::string& folder) {
  std::vector<std::string> arguments;
  bool lines_named = false;
  for (const std::string& argument : passed_on) {
    const auto [name, value] = parts(argument);
    lines_named = lines_named || name == "--output";
    std::string moved = name;
    arguments.push_back(names_output(argument) ? moved.append("=").append(folder).append("/").append(value)
                                               : argument);
  }
  if (!lines_named) arguments.push_back("--output=" + folder + "/results.jsonl");
  if (!contains(passed_on, "--quiet")) arguments.emplace_back("--quiet");
  return arguments;
}

}  // namespace lm::host::commands::archive
