#include "host/commands/run/run.h"

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <opencv2/core.hpp>
#include <optional>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/line_sink.h"
#include "host/base/notice.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/commands/run/figures.h"
#include "host/commands/run/summary.h"
#include "host/detector/adapt.h"
#include "host/detector/analysis_size.h"
#include "host/detector/check/before_run.h"
#include "host/detector/detector.h"
#include "host/detector/document.h"
#include "host/events/event_watch.h"
#include "host/outputs/annotator.h"
#include "host/outputs/listeners.h"
#include "host/outputs/progress.h"
#include "host/outputs/result_line.h"
#include "host/outputs/retention/retention.h"
#include "host/source/source.h"
#include "host/source/timestamp.h"

extern "C" {
#include <libavutil/log.h>
}

namespace lm::host::commands::run {
namespace {

using std::chrono::microseconds;

detector::Document document_of(const RunOptions& options) {
  if (!options.config.empty()) return {options.config, base::required_text(options.config)};
  if (!options.preset.empty()) return detector::preset_document(options.preset);
  return detector::default_document(options.plugin);
}

std::unique_ptr<detector::Detector> detector_for(const RunOptions& options,
                                                 const detector::Document& document, cv::Size analysed) {
  auto detector = detector::make_detector(options.plugin, document, analysed);
  if (options.verbose) {
    detector->set_listener(
        [](const std::string& chosen) { std::fprintf(stderr, "lightmotion: %s\n", chosen.c_str()); });
  }
  return detector;
}

// A line of the summary; empty for a detector that chooses nothing.
std::string chosen_by(const detector::Detector& detector) {
  const std::string chosen = detector.chosen();
  return chosen.empty() ? "" : chosen + "\n";
}

microseconds time_since(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
}

void check_storage(const RunOptions& options, const source::SourceInfo& info) {
  if (info.live || !options.storage.any()) return;
  throw base::Failure(base::kRefused, "--rotate, --keep and --keep-size are for cameras and streams; " +
                                          info.name +
                                          " is a recording, whose results are complete or not there");
}

outputs::retention::Places places_of(const RunOptions& options) {
  outputs::retention::Places places;
  for (const std::string* folder : {&options.report.clips, &options.report.snapshots}) {
    if (!folder->empty()) places.folders.push_back(*folder);
  }
  for (const std::string* file : {&options.results, &options.events.file}) {
    if (!file->empty() && *file != "-") places.files.push_back(*file);
  }
  return places;
}

class Run {
 public:
  Run(const RunOptions& options, source::Source& source, detector::Detector& detector, cv::Size analysed,
      const std::string& document)
      : source_(source),
        detector_(detector),
        analysed_(analysed),
        events_({options.events, source.info(), document}),
        progress_(options.progress.value_or(options.quiet ? outputs::ProgressMode::kNone
                                                          : outputs::ProgressMode::kBar)),
        to_terminal_(isatty(STDOUT_FILENO) != 0) {
    const events::RunContext context{options.events, source.info(), document, options.storage.rotation};
    for (auto& listener : outputs::make_listeners(context, options.source, options.mqtt, options.report)) {
      events_.add(std::move(listener));
    }
    if (options.storage.removes()) {
      events_.add(std::make_unique<outputs::retention::Retention>(
          places_of(options), outputs::retention::Limits{options.storage.keep, options.storage.keep_size}));
    }
    const bool live = source.info().live;
    if (prints_lines(options, to_terminal_)) {
      lines_.emplace("", live, base::Rotation{});
    } else if (!options.results.empty()) {
      lines_.emplace(options.results, live, options.storage.rotation);
    }
    if (live) base::count_hangups();
    if (!options.annotate.empty()) video_.emplace(options.annotate, source.info());
    source.set_listener([this](const std::string& text) { base::warn(source_.info().name + ": " + text); });
    source.set_state_listener([this](const source::SourceState& state) { source_changed(state); });
    if (source.info().live) events_.source_changed({source::CameraState::kConnected, *source.info().start});
  }

  // Events in progress end with the failure, so that nothing published stays as if they went on.
  Figures all_frames() {
    try {
      return read_frames();
    } catch (const std::exception& error) {
      end_events("The program failed: " + base::one_line(error.what()) + ".");
      throw;
    }
  }

 private:
  Figures read_frames() {
    const auto begin = std::chrono::steady_clock::now();
    const source::SourceInfo& info = source_.info();
    const microseconds interval(info.rate > 0 ? std::llround(1e6 / info.rate) : 0);
    source::Frame frame;
    while (source_.next(frame)) {
      one_frame(frame);
      figures_.video = frame.time + interval;
      figures_.work = time_since(begin);
      progress_.update(progress());
    }
    progress_.clear();
    complete_outputs();
    figures_.source = source_.counts();
    figures_.work = time_since(begin);
    progress_.done(progress());
    return figures_;
  }

  outputs::ProgressState progress() const {
    return {figures_.frames, figures_.video, source_.info().duration, speed(figures_), figures_.events};
  }

  // All outputs of a recording are complete before the first one gets its name.
  void complete_outputs() {
    if (lines_) lines_->finish();
    if (video_) video_->finish();
    events_.finish(base::interrupted() != 0);
    figures_.events = events_.events();
    figures_.clutter = events_.clutter();
    if (lines_) lines_->commit();
    if (video_) video_->commit();
    events_.commit();
  }

  void report_note(const source::Frame& frame) {
    if (frame.note.empty()) return;
    base::warn(source_.info().name + ": at " + base::seconds_text(frame.time) + " s: " + frame.note);
    write_line([&] { return outputs::note_line(frame.note, frame.number, frame.time); });
  }

  void end_events(const std::string& why) {
    try {
      events_.interrupt(why);
    } catch (const std::exception&) {
      // An output refused the event; the first failure is reported.
    }
  }

  void source_changed(const source::SourceState& state) {
    events_.source_changed(state);
    const bool lost = state.camera == source::CameraState::kLost;
    if (!lost && state.camera != source::CameraState::kFrozen) return;
    const std::string note = (lost ? "connection lost: " : "the picture is frozen: ") + state.reason;
    write_line([&] { return outputs::note_line(note, last_number_, last_time_); });
  }

  void write_line(const auto& make) {
    if (!lines_) return;
    if (to_terminal_) progress_.clear();
    lines_->write(make());
  }

  void one_frame(source::Frame& frame) {
    report_note(frame);
    if (frame.anew) detector_.restart();
    const std::int64_t stated = source::timestamp(source_.info(), frame);
    const detector::Boxes boxes = events_.frame(
        frame, frame.number, detector_.process(detector::resized(frame.image, analysed_), stated));
    if (!boxes.empty()) {
      write_line([&] { return outputs::result_line(frame.number, frame.time, boxes, stated); });
      ++figures_.frames_with_motion;
    }
    if (lines_) lines_->tick();
    figures_.events = events_.events();
    if (video_) video_->write(frame, boxes);
    ++figures_.frames;
    last_number_ = frame.number;
    last_time_ = frame.time;
  }

  source::Source& source_;
  detector::Detector& detector_;
  const cv::Size analysed_;
  events::EventWatch events_;
  std::optional<outputs::Annotator> video_;
  outputs::Progress progress_;
  const bool to_terminal_;  // of standard output
  std::optional<base::LineSink> lines_;
  Figures figures_;
  std::int64_t last_number_ = 0;
  microseconds last_time_{0};
};

}  // namespace

void try_configuration(const RunOptions& options) {
  const detector::Document document = document_of(options);
  detector::check::check_before_run(document.name, document.text, std::nullopt);
  if (!options.plugin.empty()) detector::make_detector(options.plugin, document, {});
}

int run(const RunOptions& options) {
  // What is done to small pictures takes less time than to wake another thread.
  cv::setNumThreads(1);
  av_log_set_level(options.verbose ? AV_LOG_INFO : AV_LOG_QUIET);
  const detector::Document document = document_of(options);
  const std::unique_ptr<source::Source> source = source::open_source(options.source, options.live.reading);
  check_storage(options, source->info());
  const cv::Size analysed = detector::analysed_size(document.text, source->info().size, options.live.scale);
  detector::check::check_before_run(document.name, document.text, analysed);
  const auto detector = detector_for(options, document, analysed);
  const Figures figures = Run(options, *source, *detector, analysed, document.text).all_frames();
  if (!options.figures.empty()) write_figures(options.figures, figures);
  if (!options.quiet && options.progress != outputs::ProgressMode::kLines)
    std::fputs((summary(source->info().name, figures, options) + chosen_by(*detector)).c_str(), stderr);
  if (base::interrupted() != 0) return 128 + base::interrupted();
  const std::string trouble = source->trouble();
  if (trouble.empty()) return base::kDone;
  std::fprintf(stderr, "lightmotion: %s: %s\n", source->info().name.c_str(), trouble.c_str());
  return base::kTrouble;
}

}  // namespace lm::host::commands::run
