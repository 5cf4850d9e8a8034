#include "host/commands/tune/tune.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <opencv2/core/utility.hpp>
#include <system_error>
#include <thread>

#include "host/base/failure.h"
#include "host/base/notice.h"
#include "host/base/pending_file.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/commands/tune/edit.h"
#include "host/commands/tune/picture.h"
#include "host/commands/tune/sample.h"
#include "host/commands/tune/search.h"
#include "host/commands/tune/side_by_side.h"
#include "host/commands/tune/table.h"
#include "host/commands/tune/trial.h"
#include "host/detector/adapt.h"
#include "host/detector/check/before_run.h"
#include "host/detector/document.h"
#include "host/outputs/report/image_bytes.h"

extern "C" {
#include <libavutil/log.h>
}

namespace lm::host::commands::tune {
namespace {

using std::chrono::microseconds;

constexpr double kUsualRecording = 60;  // seconds analysed
constexpr double kUsualLive = 30;

microseconds last_marked(const Marks& marks) {
  microseconds last{0};
  for (const Spans* spans : {&marks.quiet, &marks.motion}) {
    for (const events::TimeSpan& span : *spans) last = std::max(last, span.to);
  }
  return last;
}

microseconds length_asked_for(const TuneOptions& options) {
  if (options.seconds) return microseconds(std::llround(*options.seconds * 1e6));
  const double usual = source::is_live(options.source) ? kUsualLive : kUsualRecording;
  return std::max(microseconds(std::llround(usual * 1e6)), last_marked(options.marks));
}

struct BarOnTerminal {
  BarOnTerminal() = default;
  ~BarOnTerminal() { base::clear_bar(); }
  BarOnTerminal(const BarOnTerminal&) = delete;
  BarOnTerminal& operator=(const BarOnTerminal&) = delete;
};

// On a terminal only.
void show(const std::string& line) {
  if (isatty(STDERR_FILENO) != 0) base::draw_bar(line);
}

Sample read_sample(const TuneOptions& options) {
  const auto each = [](const source::Frame& frame) {
    if (frame.number % 10 == 0) show("reading the sample: " + base::clock_text(frame.time));
  };
  const BarOnTerminal bar;
  Sample sample(options.source, options.live.reading, length_asked_for(options), each);
  if (!sample.trouble().empty()) base::warn(sample.info().name + ": " + sample.trouble());
  for (const auto& [name, spans] :
       {std::pair{"--quiet", &options.marks.quiet}, {"--motion", &options.marks.motion}}) {
    for (const events::TimeSpan& span : *spans) {
      if (span.from < sample.length()) continue;
      throw base::Failure(base::kRefused, std::string(name) + " " + text_of({span}, false) +
                                              " begins after the end of the sample at " +
                                              base::seconds_text(sample.length()) + " s");
    }
  }
  return sample;
}

// The starting configuration.
detector::Document start_of(const TuneOptions& options, const std::string& source) {
  if (!options.config.empty()) return {options.config, base::required_text(options.config)};
  detector::Document start = detector::default_document(options.plugin);
  start.text = with_members(start.text, {{"comment", "Proposed by lightmotion tune for " + source}});
  return start;
}

// A process can run one plug-in at a time.
std::size_t jobs_of(const TuneOptions& options) {
  if (!options.plugin.empty()) return 1;
  if (options.jobs > 0) return static_cast<std::size_t>(options.jobs);
  return std::max<std::size_t>(1, std::thread::hardware_concurrency());
}

class Tuning {
 public:
  Tuning(const TuneOptions& options, const Sample& sample)
      : options_(options),
        sample_(sample),
        start_(start_of(options, sample.info().name)),
        jobs_(jobs_of(options)) {}

  Outcome outcome() {
    detector::check::check_before_run(
        start_.name, start_.text,
        detector::analysed_size(start_.text, sample_.info().size, options_.live.scale));
    Outcome outcome;
    outcome.own = own_values(start_.text);
    usual_ = usual_trials(outcome.own);
    outcome.source = sample_.info().name;
    outcome.frames = sample_.frames();
    outcome.length = sample_.length();
    outcome.marks = options_.marks;
    search(outcome, [this](const std::vector<Setting>& settings) { return try_all(settings); });
    outcome.document = with_members(start_.text, members_of(outcome.trials[outcome.chosen].setting));
    return outcome;
  }

 private:
  std::vector<Seen> try_all(const std::vector<Setting>& settings) {
    std::vector<Seen> seen(settings.size());
    const auto work = [&](std::size_t item) {
      const std::string document = with_members(start_.text, members_of(settings[item]));
      seen[item] = try_document(options_.plugin, document, options_.live.scale, sample_);
    };
    const auto done = [this](std::size_t) {
      show("settings tried: " + std::to_string(++tried_) + " of about " + std::to_string(usual_));
    };
    side_by_side(settings.size(), jobs_, work, done);
    return seen;
  }

  const TuneOptions& options_;
  const Sample& sample_;
  detector::Document start_;
  std::size_t jobs_;
  std::size_t usual_ = 0;
  std::size_t tried_ = 0;
};

void print(const std::string& text) {
  if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
    throw base::Failure(base::kTrouble, "standard output: " + std::generic_category().message(errno));
}

// Opened before the work, so that an unwritable file is reported at once.
class Files {
 public:
  explicit Files(const TuneOptions& options) {
    refuse_same("--output", options.output, "the source", options.source);
    refuse_same("--picture", options.picture, "the source", options.source);
    refuse_same("--picture", options.picture, "the configuration", options.config);
    if (!options.output.empty()) document_.emplace(options.output);
    if (!options.picture.empty()) picture_.emplace(options.picture);
  }

  void write(const Outcome& outcome) {
    if (document_) base::write_bytes(*document_, outcome.document);
    if (picture_) base::write_bytes(*picture_, outputs::report::png_bytes(picture_of(outcome)));
    if (document_) document_->commit();
    if (picture_) picture_->commit();
  }

 private:
  static void refuse_same(const char* option, const std::string& output, const char* what,
                          const std::string& input) {
    std::error_code missing;
    if (!output.empty() && !input.empty() && std::filesystem::equivalent(output, input, missing))
      throw base::Failure(base::kRefused, std::string(option) + " would overwrite " + what);
  }

  std::optional<base::PendingFile> document_;
  std::optional<base::PendingFile> picture_;
};

Outcome outcome_of(const TuneOptions& options, const Sample& sample) {
  const BarOnTerminal bar;
  return Tuning(options, sample).outcome();
}

}  // namespace

int tune(const TuneOptions& options) {
  av_log_set_level(AV_LOG_QUIET);
  cv::setNumThreads(1);  // the settings share the processors
  Files files(options);
  const Sample sample = read_sample(options);
  const Outcome outcome = outcome_of(options, sample);
  files.write(outcome);
  if (options.json) {
    print(to_json(outcome));
  } else {
    std::fputs(table_text(outcome).c_str(), stderr);
    if (options.output.empty()) print(outcome.document);
  }
  return sample.trouble().empty() ? base::kDone : base::kTrouble;
}

}  // namespace lm::host::commands::tune
