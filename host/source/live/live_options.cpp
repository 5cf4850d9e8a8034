#include "host/source/live/live_options.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cmath>
#include <utility>

#include "host/base/number_option.h"

namespace lm::host::source::live {
namespace {

constexpr const char* kGroup = "Sources";
constexpr double kShortest = 0.001;

std::chrono::microseconds from_seconds(double value) {
  return std::chrono::microseconds(std::llround(value * 1e6));
}

}  // namespace

void add_live_options(CLI::App& run, LiveOptions& options) {
  Reading& reading = options.reading;
  const auto add_time = [&run](const char* name, double least, std::string help, const char* preset,
                               auto& value) {
    base::add_number(run, {name, "SECONDS", std::move(help), {least, base::kUnlimited, "s"}, preset},
                     [&value](double seconds) { value = from_seconds(seconds); })
        ->group(kGroup);
  };
  base::add_number(run,
                   {"--fps", "N", "Analyse at most this many frames per second", {kShortest, 1e3}, "all"},
                   [&reading](double rate) { reading.fps = rate; })
      ->group(kGroup);
  run.add_option_function<std::string>(
         "--scale", [&options](const std::string& text) { options.scale = *parse_scale(text); },
         "Analyse smaller frames: a factor such as 0.5, or a size such as 640x360; outputs keep the full "
         "size")
      ->type_name("SCALE")
      ->check([](const std::string& text) {
        return parse_scale(text) ? "" : "must be a factor up to 1 or a size such as 640x360, not " + text;
      })
      ->group(kGroup);
  add_time("--max-gap", kShortest, "Report gaps between frames longer than this", "10", reading.max_gap);
  add_time("--timeout", kShortest, "How long to wait for data from a camera or network", "10",
           reading.timeout);
  add_time("--reconnect", 0, "How long to try to reconnect to a lost camera or stream; 0 does not try",
           "forever", reading.patience);
  add_time("--frozen", 0,
           "Treat a camera as frozen when its picture stays exactly the same for this long; 0 never does",
           "60", reading.frozen);
}

}  // namespace lm::host::source::live
