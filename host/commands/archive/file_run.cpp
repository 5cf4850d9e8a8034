#include "host/commands/archive/file_run.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <string_view>
#include <utility>

#include "host/base/child.h"
#include "host/base/failure.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/commands/archive/archive_options.h"
#include "host/commands/archive/folder_name.h"

namespace lm::host::commands::archive {
namespace {

namespace fs = std::filesystem;

constexpr const char* kMessages = "/messages.txt";
constexpr const char* kFigures = "/figures.json";
constexpr const char* kRecord = "/run.json";

// These do not affect the results; the configuration is compared by its text, not by its name.
constexpr std::array<std::string_view, 3> kWithoutEffect{"--quiet", "--verbose", "--config"};

bool affects_results(const std::string& option) {
  return std::ranges::find(kWithoutEffect, option.substr(0, option.find('='))) == kWithoutEffect.end();
}

Outcome outcome_of(int status) { return status == base::kDone ? Outcome::kOk : Outcome::kIncomplete; }

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::vector<std::string> arguments_for(const ArchiveSettings& settings, const std::string& folder,
                                       const std::string& path) {
  std::vector<std::string> arguments = options_for_folder(settings.options, folder);
  arguments.insert(arguments.begin(), "run");
  arguments.push_back("--figures=" + folder + kFigures);
  arguments.push_back(path);
  return arguments;
}

}  // namespace

std::string settings_digest(const std::vector<std::string>& options, const std::string& configuration) {
  std::vector<std::string> parts;
  std::ranges::copy_if(options, std::back_inserter(parts), affects_results);
  std::ranges::sort(parts);
  std::string text = LIGHTMOTION_PROGRAM_VERSION;
  for (const std::string& part : parts) text.append(1, '\0').append(part);
  return digest(text.append(2, '\0').append(configuration));
}

std::optional<TableRow> finished_row(const ArchiveSettings& settings, const std::string& path,
                                     const SourceState& source) {
  const std::string name = folder_name(path);
  const std::string folder = settings.folder + "/" + name;
  const std::optional<std::string> text = base::read_text(folder + kRecord);
  const std::optional<Record> record = text ? record_from(*text) : std::nullopt;
  if (!record || record->source != source || record->settings != settings.digest) return std::nullopt;
  return TableRow{path, outcome_of(record->status), record->figures, name, record->why};
}

FileRun::FileRun(const ArchiveSettings& settings, const std::string& path, const SourceState& source,
                 WorkFolder folder)
    : settings_(settings),
      path_(path),
      source_(source),
      folder_(std::move(folder)),
      process_(base::start_child(arguments_for(settings, folder_.path(), path), folder_.path() + kMessages)) {
  if (settings.file_timeout > std::chrono::microseconds(0)) deadline_.allow(settings.file_timeout);
}

void FileRun::keep_time() {
  if (deadline_.passed()) kill(process_, SIGKILL);
}

TableRow FileRun::finish(int status) {
  if (deadline_.passed() && base::exit_status(status) > base::kTrouble) {
    const std::string time = base::seconds_text(settings_.file_timeout);
    return {path_, Outcome::kFailed, std::nullopt, "",
            "time limit of " + time + " s exceeded (--file-timeout)"};
  }
  const std::string messages = replaced(base::read_text(folder_.path() + kMessages).value_or(""),
                                        folder_.path(), folder_.final_path());
  TableRow row{path_, Outcome::kFailed, std::nullopt, "",
               base::cause_of(messages, base::exit_status(status), path_)};
  // A run that wrote its figures has completed its outputs.
  const std::optional<run::Figures> figures = run::read_figures(folder_.path() + kFigures);
  if (!figures || base::exit_status(status) > base::kTrouble) return row;
  row.figures = figures;
  row.outcome = outcome_of(base::exit_status(status));
  try {
    return keep(row, base::exit_status(status));
  } catch (const base::Failure& failure) {
    return {path_, Outcome::kFailed, std::nullopt, "", failure.what()};
  }
}

TableRow FileRun::keep(TableRow row, int status) {
  std::error_code ignored;
  fs::remove(folder_.path() + kFigures, ignored);
  if (fs::is_empty(folder_.path() + kMessages, ignored)) fs::remove(folder_.path() + kMessages, ignored);
  const Record record{path_, source_, settings_.options, settings_.digest, status, row.why, *row.figures};
  base::write_file(folder_.path() + kRecord, to_json(record) + "\n");
  folder_.publish();
  row.results = folder_name(path_);
  return row;
}

}  // namespace lm::host::commands::archive
