#include "host/commands/archive/archive.h"

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <list>
#include <system_error>
#include <utility>

#include "host/base/child.h"
#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/whole_file.h"
#include "host/commands/archive/archive_progress.h"
#include "host/commands/archive/file_list.h"
#include "host/commands/archive/file_run.h"
#include "host/commands/archive/folder_name.h"
#include "host/commands/archive/shard.h"
#include "host/commands/run/run.h"

namespace lm::host::commands::archive {
namespace {

namespace fs = std::filesystem;

// The processors available to this process; in a batch job fewer than the machine has.
int processors() {
  cpu_set_t set;
  return sched_getaffinity(0, sizeof set, &set) == 0 ? std::max(1, CPU_COUNT(&set)) : 1;
}

// SIGCHLD is blocked so that it can be waited for together with other signals.
sigset_t hold_back_child_signals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGCHLD);
  std::signal(SIGCHLD, SIG_DFL);
  sigprocmask(SIG_BLOCK, &set, nullptr);
  return set;
}

std::string made_folder(const std::string& name) {
  std::error_code error;
  fs::create_directories(name, error);
  if (!error && access(name.c_str(), W_OK | X_OK) != 0) error = {errno, std::generic_category()};
  if (error) throw base::Failure(base::kTrouble, name + " cannot be written: " + error.message());
  return fs::canonical(name).string();
}

ArchiveSettings settings_of(const run::RunOptions& options, const ArchiveOptions& archive) {
  const std::string configuration = options.config.empty() ? "" : base::required_text(options.config);
  return {made_folder(archive.out), archive.passed_on, settings_digest(archive.passed_on, configuration),
          archive.file_timeout};
}

std::vector<ArchiveFile> files_of(const ArchiveOptions& options, const Shard& shard) {
  const std::vector<ArchiveFile> all = list_files(options.sources, options.out);
  std::vector<ArchiveFile> files;
  for (std::size_t place = 0; place < all.size(); ++place) {
    if (belongs(shard, place)) files.push_back(all[place]);
  }
  return files;
}

class ArchiveRun {
 public:
  ArchiveRun(const run::RunOptions& options, const ArchiveOptions& archive, ArchiveSettings settings,
             const std::vector<ArchiveFile>& files)
      : force_(archive.force),
        settings_(std::move(settings)),
        jobs_(static_cast<std::size_t>(archive.jobs > 0 ? archive.jobs : processors())),
        child_ended_(hold_back_child_signals()),
        progress_(options.progress.value_or(options.quiet ? outputs::ProgressMode::kNone
                                                          : outputs::ProgressMode::kBar)) {
    for (const ArchiveFile& file : files) {
      waiting_.push_back({file.path, file.why});
      std::error_code ignored;
      const std::uintmax_t size = fs::file_size(file.path, ignored);
      if (!ignored) state_.bytes_to_do += static_cast<std::int64_t>(size);
    }
    state_.files = files.size();
  }

  // Runs until every file is finished or the program is interrupted. The rows are in the order of the files.
  std::vector<TableRow> all_files() {
    const auto begin = std::chrono::steady_clock::now();
    while (base::interrupted() == 0 && (!waiting_.empty() || !running_.empty())) {
      start_some();
      state_.worked =
          std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
      progress_.show(state_);
      if (!running_.empty() || !waiting_.empty()) wait();
      take_ended();
    }
    if (base::interrupted() != 0) stop();
    progress_.show(state_);
    progress_.clear();
    std::ranges::sort(rows_, {}, &TableRow::path);
    return std::move(rows_);
  }

 private:
  // Starts files while there are free jobs. A file that another run processes goes back to the queue.
  void start_some() {
    for (std::size_t turns = waiting_.size();
         turns > 0 && running_.size() < jobs_ && base::interrupted() == 0; --turns) {
      const ArchiveFile file = std::move(waiting_.front());
      waiting_.pop_front();
      try {
        if (!start(file)) waiting_.push_back(file);
      } catch (const base::Failure& failure) {
        done({file.path, Outcome::kFailed, std::nullopt, "", failure.what()}, true);
      }
    }
  }

  // False while another run processes the file.
  bool start(const ArchiveFile& file) {
    if (!file.why.empty()) throw base::Failure(base::kTrouble, file.why);
    const std::optional<SourceState> source = source_state(file.path);
    if (!source) throw base::Failure(base::kTrouble, std::generic_category().message(errno));
    if (skip(file, *source)) return true;
    std::optional<WorkFolder> folder = WorkFolder::claim(settings_.folder, folder_name(file.path));
    if (!folder) return false;
    if (skip(file, *source)) return true;  // another run has just finished it
    running_.emplace_back(settings_, file.path, *source, std::move(*folder));
    return true;
  }

  bool skip(const ArchiveFile& file, const SourceState& source) {
    if (force_) return false;
    std::optional<TableRow> row = finished_row(settings_, file.path, source);
    if (!row) return false;
    WorkFolder::tidy(settings_.folder, folder_name(file.path));
    state_.bytes_to_do -= source.size;
    done(std::move(*row), false);
    return true;
  }

  // Waits for a child's end or a signal; with a timeout, because released locks send no signal.
  void wait() const {
    const timespec patience{0, 200'000'000};
    sigtimedwait(&child_ended_, nullptr, &patience);
  }

  void take_ended() {
    for (auto run = running_.begin(); run != running_.end();) {
      int status = 0;
      run->keep_time();
      if (waitpid(run->process(), &status, WNOHANG) != run->process()) {
        ++run;
        continue;
      }
      // Ctrl-C reaches the children too, and their results are then incomplete.
      if (base::interrupted() == 0 || base::exit_status(status) <= base::kTrouble) {
        state_.bytes_done += run->bytes();
        done(run->finish(status), true);
      }
      run = running_.erase(run);
    }
  }

  void done(TableRow row, bool now) {
    ++state_.done;
    if (row.figures) state_.events += row.figures->events;
    if (row.outcome != Outcome::kOk) {
      ++state_.failed;
      progress_.clear();
      if (now)
        std::fprintf(stderr, "lightmotion: %s: %s\n", base::one_line(row.path).c_str(), row.why.c_str());
    }
    rows_.push_back(std::move(row));
  }

  void stop() {
    for (const FileRun& run : running_) kill(run.process(), SIGTERM);
    for (const FileRun& run : running_) waitpid(run.process(), nullptr, 0);
    running_.clear();
  }

  const bool force_;
  ArchiveSettings settings_;
  std::size_t jobs_;
  sigset_t child_ended_;
  ArchiveProgress progress_;
  std::deque<ArchiveFile> waiting_;
  std::list<FileRun> running_;
  std::vector<TableRow> rows_;
  ArchiveState state_;
};

std::string table_name(const Shard& shard) {
  if (shard.count == 1) return "/files.csv";
  return "/files-" + std::to_string(shard.index + 1) + "-of-" + std::to_string(shard.count) + ".csv";
}

}  // namespace

int run_archive(const run::RunOptions& options, const ArchiveOptions& archive) {
  const Shard shard = parse_shard(archive.shard);
  const std::vector<ArchiveFile> files = files_of(archive, shard);
  run::try_configuration(options);  // once instead of once per file
  const ArchiveSettings settings = settings_of(options, archive);
  const std::vector<TableRow> rows = ArchiveRun(options, archive, settings, files).all_files();
  if (base::interrupted() != 0) {
    std::fprintf(stderr,
                 "lightmotion: interrupted with %zu of %zu files finished; run the same command to resume\n",
                 rows.size(), files.size());
    return 128 + base::interrupted();
  }
  if (!options.quiet) std::fputs(table_text(rows).c_str(), stdout);
  base::write_file(settings.folder + table_name(shard), table_csv(rows));
  const bool all_ok = std::ranges::all_of(
      rows, [](Outcome outcome) { return outcome == Outcome::kOk; }, &TableRow::outcome);
  return all_ok ? base::kDone : base::kTrouble;
}

}  // namespace lm::host::commands::archive
