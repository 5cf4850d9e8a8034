#include "host/run.h"

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>

#include "host/annotator.h"
#include "host/archive/record.h"
#include "host/check/before_run.h"
#include "host/document.h"
#include "host/events/event_watch.h"
#include "host/events/regions.h"
#include "host/interrupt.h"
#include "host/line_sink.h"
#include "host/notice.h"
#include "host/plugin.h"
#include "host/presets/presets.h"
#include "host/progress.h"
#include "host/result_line.h"
#include "host/source.h"
#include "host/standard_streams.h"
#include "host/summary.h"
#include "host/time_text.h"
#include "host/timestamp.h"
#include "host/whole_file.h"

extern "C" {
#include <libavutil/log.h>
}

namespace lm::host {
namespace {

using std::chrono::microseconds;

struct Asked {
  std::string name;  // for messages
  std::string text;
};

Asked asked_document(const Options& options) {
  if (!options.config.empty()) return {options.config, required_text(options.config)};
  if (options.preset.empty()) return {"the built-in configuration", default_document()};
  return {"the preset " + options.preset, find_preset(options.preset)->document};
}

// The document that the plug-in works with. `analysed`: the size of its frames; empty when any will do.
std::string start(Plugin& plugin, const Options& options, cv::Size analysed) {
  const auto [name, text] = asked_document(options);
  check::tell_before_run(name, text, analysed.empty() ? std::nullopt : std::optional(analysed));
  std::string document;
  try {
    document = complete_document(text, analysed);
  } catch (const std::invalid_argument& misfit) {
    throw Failure(kRefused, name + ": " + misfit.what());
  }
  const std::string refusal = plugin.start(document);
  if (!refusal.empty()) throw Failure(kRefused, name + ": the plug-in refuses it: " + refusal);
  return document;
}

microseconds time_since(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
}

class Run {
 public:
  Run(const Options& options, Source& source, Plugin& plugin, const std::string& document)
      : options_(options),
        source_(source),
        plugin_(plugin),
        document_(document),
        analysed_(options.live.scale.of(source.info().size)),
        regions_(document),
        lines_(options.results),
        events_({options, source.info(), document}),
        progress_(options.progress.value_or(options.quiet ? ProgressMode::kNone : ProgressMode::kBar)),
        shares_terminal_(options.results.empty() && isatty(STDOUT_FILENO) != 0) {
    if (!options.annotate.empty()) video_.emplace(options.annotate, source.info());
    source.tell([this](const std::string& text) { warn(source_.info().name + ": " + text); });
  }

  Figures all_frames() {
    const auto begin = std::chrono::steady_clock::now();
    const SourceInfo& info = source_.info();
    const microseconds interval(info.rate > 0 ? std::llround(1e6 / info.rate) : 0);
    Frame frame;
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
  ProgressState progress() const {
    return {figures_.frames, figures_.video, source_.info().duration, speed(figures_), figures_.events};
  }

  // No file takes its name before all of them are whole.
  void complete_outputs() {
    lines_.finish();
    if (video_) video_->finish();
    events_.finish(interrupted() != 0);
    figures_.events = events_.events();
    lines_.commit();
    if (video_) video_->commit();
    events_.commit();
  }

  // The plug-in tells about its buffers on the first frame, which is of use to its developers only.
  std::string process(const Frame& frame, const std::string& stated) {
    std::optional<CapturedStream> chatter;
    if ((figures_.frames == 0 || frame.anew) && !options_.verbose) chatter.emplace(stderr);
    if (frame.anew) plugin_.restart(document_);
    return plugin_.process(scaled(frame.image, analysed_).data, stated);
  }

  void tell_note(const Frame& frame) {
    if (frame.note.empty()) return;
    warn(source_.info().name + ": at " + seconds_text(frame.time) + " s: " + frame.note);
    lines_.write(note_line(frame.note, frame.number, frame.time));
  }

  std::vector<ReportedBox> with_regions(const std::vector<cv::Rect2d>& boxes) const {
    std::vector<ReportedBox> reported;
    for (const cv::Rect2d& box : boxes) {
      reported.push_back({box, {}});
      regions_.touched(box, reported.back().regions);
    }
    return reported;
  }

  void one_frame(Frame& frame) {
    tell_note(frame);
    const std::string stated = timestamp(source_.info(), frame);
    const std::string document = process(frame, stated);
    const std::vector<cv::Rect2d> boxes = boxes_of(document);
    if (!boxes.empty()) {
      if (shares_terminal_) progress_.clear();
      lines_.write(result_line(frame.number, frame.time, with_regions(boxes), stated));
      ++figures_.frames_with_motion;
    }
    events_.frame(frame, frame.number, boxes);
    figures_.events = events_.events();
    if (video_) video_->write(frame, boxes);
    ++figures_.frames;
  }

  const Options& options_;
  Source& source_;
  Plugin& plugin_;
  const std::string& document_;
  const cv::Size analysed_;
  const Regions regions_;
  LineSink lines_;
  EventWatch events_;
  std::optional<Annotator> video_;
  Progress progress_;
  bool shares_terminal_;
  Figures figures_;
};

}  // namespace

void try_configuration(Plugin& plugin, const Options& options) { start(plugin, options, {}); }

int run(const Options& options) {
  av_log_set_level(options.verbose ? AV_LOG_INFO : AV_LOG_QUIET);
  Plugin plugin(find_plugin(options.plugin, program_folder()));
  const std::unique_ptr<Source> source = open_source(options.source, options.live.reading);
  const std::string document = start(plugin, options, options.live.scale.of(source->info().size));
  const Figures figures = Run(options, *source, plugin, document).all_frames();
  if (!options.archive.figures.empty()) write_figures(options.archive.figures, figures);
  if (!options.quiet && options.progress != ProgressMode::kLines)
    std::fputs(summary(source->info().name, figures, options).c_str(), stderr);
  if (interrupted() != 0) return 128 + interrupted();
  const std::string trouble = source->trouble();
  if (trouble.empty()) return kDone;
  std::fprintf(stderr, "lightmotion: %s: %s\n", source->info().name.c_str(), trouble.c_str());
  return kTrouble;
}

}  // namespace lm::host
