#include "host/live/live_options.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cmath>

namespace lm::host {
namespace {

constexpr const char* kGroup = "Sources";
constexpr double kShortest = 0.001;
constexpr double kLongest = 1e9;  // seconds; some thirty years

std::chrono::microseconds from_seconds(double value) {
  return std::chrono::microseconds(std::llround(value * 1e6));
}

}  // namespace

void add_live_options(CLI::App& run, LiveOptions& options) {
  Reading& reading = options.reading;
  const auto add_time = [&run](const char* name, std::chrono::microseconds& value, const char* help) {
    run.add_option_function<double>(
           name, [&value](double seconds) { value = from_seconds(seconds); }, help)
        ->type_name("SECONDS")
        ->check(CLI::Range(kShortest, kLongest))
        ->group(kGroup);
  };
  run.add_option("--fps", reading.fps, "Analyse at most so many frames a second")
      ->type_name("N")
      ->check(CLI::Range(kShortest, 1e3))
      ->group(kGroup);
  run.add_option_function<std::string>(
         "--scale", [&options](const std::string& text) { options.scale = *parse_scale(text); },
         "Analyse smaller frames: a factor such as 0.5, or a size\nsuch as 640x360; outputs keep the full "
         "size")
      ->type_name("SCALE")
      ->check([](const std::string& text) {
        return parse_scale(text) ? "" : "must be a factor up to 1 or a size such as 640x360, not " + text;
      })
      ->group(kGroup);
  add_time("--max-gap", reading.max_gap, "Report frames that lie further apart (10)");
  add_time("--timeout", reading.timeout, "How long to wait for a camera or a network (10)");
  run.add_option_function<double>(
         "--reconnect", [&reading](double seconds) { reading.patience = from_seconds(seconds); },
         "How long to try to get a lost live source back;\nwithout it, for ever; 0 for not at all")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.0, kLongest))
      ->group(kGroup);
}

}  // namespace lm::host
