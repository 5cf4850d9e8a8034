#include "host/commands/run/run.h"

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/line_sink.h"
#include "host/base/notice.h"
#include "host/base/standard_streams.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/commands/run/figures.h"
#include "host/commands/run/summary.h"
#include "host/detector/check/before_run.h"
#include "host/detector/document.h"
#include "host/detector/plugin.h"
#include "host/detector/presets/presets.h"
#include "host/detector/regions.h"
#include "host/events/event_watch.h"
#include "host/outputs/annotator.h"
#include "host/outputs/listeners.h"
#include "host/outputs/progress.h"
#include "host/outputs/result_line.h"
#include "host/source/source.h"
#include "host/source/timestamp.h"

extern "C" {
#include <libavutil/log.h>
}

namespace lm::host::commands::run {
namespace {

using std::chrono::microseconds;

struct Asked {
  std::string name;  // for messages
  std::string text;
};

Asked asked_document(const RunOptions& options) {
  if (!options.config.empty()) return {options.config, base::required_text(options.config)};
  if (options.preset.empty()) return {"the built-in configuration", detector::default_document()};
  return {"the preset " + options.preset, detector::presets::find_preset(options.preset)->document};
}

// Starts the plug-in; returns its completed configuration. `analysed`: the frame size; empty for any.
std::string start(detector::Plugin& plugin, const RunOptions& options, cv::Size analysed) {
  const auto [name, text] = asked_document(options);
  detector::check::check_before_run(name, text, analysed.empty() ? std::nullopt : std::optional(analysed));
  std::string document;
  try {
    document = detector::complete_document(text, analysed);
  } catch (const std::invalid_argument& misfit) {
    throw base::Failure(base::kRefused, name + ": " + misfit.what());
  }
  const std::string refusal = plugin.start(document);
  if (!refusal.empty()) throw base::Failure(base::kRefused, name + ": the plug-in refuses it: " + refusal);
  return document;
}

microseconds time_since(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
}

class Run {
 public:
  Run(const RunOptions& options, source::Source& source, detector::Plugin& plugin,
      const std::string& document)
      : options_(options),
        source_(source),
        plugin_(plugin),
        document_(document),
        analysed_(options.live.scale.of(source.info().size)),
        regions_(document),
        events_({options.events, source.info(), document}),
        progress_(options.progress.value_or(options.quiet ? outputs::ProgressMode::kNone
                                                          : outputs::ProgressMode::kBar)),
        to_terminal_(isatty(STDOUT_FILENO) != 0) {
    for (auto& listener : outputs::make_listeners({options.events, source.info(), document}, options.source,
                                                  options.mqtt, options.report)) {
      events_.add(std::move(listener));
    }
    if (prints_lines(options, to_terminal_)) {
      lines_.emplace("");
    } else if (!options.results.empty()) {
      lines_.emplace(options.results);
    }
    if (!options.annotate.empty()) video_.emplace(options.annotate, source.info());
    source.set_listener([this](const std::string& text) { base::warn(source_.info().name + ": " + text); });
  }

  Figures all_frames() {
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

 private:
  outputs::ProgressState progress() const {
    return {figures_.frames, figures_.video, source_.info().duration, speed(figures_), figures_.events};
  }

  // All outputs are complete before the first one gets its name.
  void complete_outputs() {
    if (lines_) lines_->finish();
    if (video_) video_->finish();
    events_.finish(base::interrupted() != 0);
    figures_.events = events_.events();
    if (lines_) lines_->commit();
    if (video_) video_->commit();
    events_.commit();
  }

  // The plug-in prints its buffers' sizes on the first frame, which only its developers need.
  std::string process(const source::Frame& frame, const std::string& stated) {
    std::optional<base::CapturedStream> printed;
    if ((figures_.frames == 0 || frame.anew) && !options_.verbose) printed.emplace(stderr);
    if (frame.anew) plugin_.restart(document_);
    return plugin_.process(source::live::scaled(frame.image, analysed_).data, stated);
  }

  void report_note(const source::Frame& frame) {
    if (frame.note.empty()) return;
    base::warn(source_.info().name + ": at " + base::seconds_text(frame.time) + " s: " + frame.note);
    write_line([&] { return outputs::note_line(frame.note, frame.number, frame.time); });
  }

  void write_line(const auto& make) {
    if (!lines_) return;
    if (to_terminal_) progress_.clear();
    lines_->write(make());
  }

  void one_frame(source::Frame& frame) {
    report_note(frame);
    const std::string stated = source::timestamp(source_.info(), frame);
    const std::string document = process(frame, stated);
    detector::Boxes boxes = outputs::boxes_of(document);
    for (detector::Box& box : boxes) box.regions = regions_.touched(box.area);
    if (!boxes.empty()) {
      write_line([&] { return outputs::result_line(frame.number, frame.time, boxes, stated); });
      ++figures_.frames_with_motion;
    }
    events_.frame(frame, frame.number, boxes);
    figures_.events = events_.events();
    if (video_) video_->write(frame, boxes);
    ++figures_.frames;
  }

  const RunOptions& options_;
  source::Source& source_;
  detector::Plugin& plugin_;
  const std::string& document_;
  const cv::Size analysed_;
  const detector::Regions regions_;
  events::EventWatch events_;
  std::optional<outputs::Annotator> video_;
  outputs::Progress progress_;
  const bool to_terminal_;  // of standard output
  std::optional<base::LineSink> lines_;
  Figures figures_;
};

}  // namespace

void try_configuration(detector::Plugin& plugin, const RunOptions& options) { start(plugin, options, {}); }

int run(const RunOptions& options) {
  av_log_set_level(options.verbose ? AV_LOG_INFO : AV_LOG_QUIET);
  detector::Plugin plugin(detector::find_plugin(options.plugin, detector::program_folder()));
  const std::unique_ptr<source::Source> source = source::open_source(options.source, options.live.reading);
  const std::string document = start(plugin, options, options.live.scale.of(source->info().size));
  const Figures figures = Run(options, *source, plugin, document).all_frames();
  if (!options.figures.empty()) write_figures(options.figures, figures);
  if (!options.quiet && options.progress != outputs::ProgressMode::kLines)
    std::fputs(summary(source->info().name, figures, options).c_str(), stderr);
  if (base::interrupted() != 0) return 128 + base::interrupted();
  const std::string trouble = source->trouble();
  if (trouble.empty()) return base::kDone;
  std::fprintf(stderr, "lightmotion: %s: %s\n", source->info().name.c_str(), trouble.c_str());
  return base::kTrouble;
}

}  // namespace lm::host::commands::run
