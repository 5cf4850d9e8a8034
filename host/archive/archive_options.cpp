#include "host/archive/archive_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string_view>

namespace lm::host {
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

// "--name=value" in its two parts; the value is empty where there is none.
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
    const bool plain =
        !value.empty() && value.find('/') == std::string::npos && value != "." && value != "..";
    if (!plain) return name + " with --out takes a plain name, without a folder";
    if (contains(kTaken, value)) return value + " among the results is the archive's own";
  }
  return "";
}

// A run over a single source.
std::string single_misuse(const ArchiveOptions& options) {
  std::error_code ignored;
  if (options.jobs != 0 || options.force || !options.shard.empty() || options.file_timeout > 0us) {
    return "--jobs, --shard, --file-timeout and --force are of use with --out DIR only";
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
  run.add_option("SOURCE", options.sources,
                 "Video file, stream address or camera (/dev/video0);\nthe built-in scene when left out. "
                 "With --out also folders,\npatterns, @LIST (a path a line) and several of these")
      ->type_name("");
  const char* group = "Archives of many files";
  run.add_option("--out", options.out,
                 "Each file's results go to a folder of their own in DIR;\ngoes on "
                 "where an earlier run was stopped")
      ->type_name("DIR")
      ->group(group);
  run.add_option("--jobs", options.jobs, "Files worked on at a time (default: the processors)")
      ->type_name("N")
      ->check(CLI::Range(1, 4096).description(""))
      ->group(group);
  run.add_option("--shard", options.shard,
                 "Only every Nth file from the Ith on, counted from 1;\n"
                 "slurm: as the Slurm array task says")
      ->type_name("I/N")
      ->group(group);
  run.add_option_function<double>(
         "--file-timeout",
         [&options](double seconds) {
           options.file_timeout = std::chrono::microseconds(std::llround(seconds * 1e6));
         },
         "Give a file up that is not done after so long")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.001, 1e9).description(""))
      ->group(group);
  run.add_flag("--force", options.force, "Files that are done are done again")->group(group);
  run.add_option("--figures", options.figures)->group("");
}

std::string complete_archive_options(const CLI::App& run, ArchiveOptions& options) {
  if (options.out.empty()) return single_misuse(options);
  if (options.sources.empty()) return "--out needs a source";
  options.passed_on = given_options(run);
  // A broker knows a camera by its name, and here many files are at work at once.
  if (run.count("--mqtt") > 0) return "--mqtt is for a single source, not for --out";
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

}  // namespace lm::host
