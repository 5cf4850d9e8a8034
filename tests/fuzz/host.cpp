// Everything that the host program parses itself: command lines, configuration and result documents, times,
// option values, its own records. The first byte of the input selects the kind.
#include <json/json.h>

#include <memory>
#include <stdexcept>

#include "host/base/failure.h"
#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/commands/archive/record.h"
#include "host/commands/archive/shard.h"
#include "host/commands/command_line.h"
#include "host/detector/check/check.h"
#include "host/detector/check/text.h"
#include "host/detector/document.h"
#include "host/detector/plugin_detector.h"
#include "host/detector/regions.h"
#include "host/events/box.h"
#include "host/events/event_options.h"
#include "host/outputs/mqtt/address.h"
#include "host/outputs/overlay.h"
#include "host/outputs/progress.h"
#include "host/outputs/result_line.h"
#include "host/source/frame_clock.h"
#include "host/source/live/scale.h"
#include "host/source/source.h"
#include "tests/fuzz/target.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::commands;
using namespace lm::host::commands::archive;
using namespace lm::host::detector;
using namespace lm::host::events;
using namespace lm::host::outputs;
using namespace lm::host::source;
using namespace lm::host::source::live;
using std::chrono::microseconds;

// Arguments, one per line.
void readArguments(const std::string& text) {
  std::vector<std::string> arguments;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    arguments.emplace_back(text.substr(at, end - at).c_str());
    at = end + 1;
  }
  const Command command = parse_command_line(arguments);
  fuzz::require(static_cast<bool>(command.work) == command.text.empty(),
                "neither something to do nor a text, or both");
}

// A configuration document for frames of 640 x 360.
void readAsDocument(const std::string& text) {
  for (const check::Reader reader : {check::Reader::plugin, check::Reader::handle}) {
    const check::Verdict verdict = check::check_document(text, cv::Size(640, 360), reader);
    for (const check::Finding& finding : verdict.findings)
      fuzz::require(check::sentence("d", finding).find('\n') == std::string::npos,
                    "a finding of several lines");
    fuzz::require(!check::to_json(verdict).empty() && !check::to_text("d", verdict).empty(),
                  "a mute verdict");
  }
  std::string document;
  try {
    document = plugin_document(text, {640, 360});
  } catch (const std::invalid_argument& misfit) {
    const std::string cause = one_line(misfit.what());
    fuzz::require(!cause.empty(), "refused without a cause");
    fuzz::require(check::check_document(text, cv::Size(640, 360)).refused() ||
                      cause.find("--plugin") != std::string::npos,
                  "a misfit is not found");
    return;
  }
  plugin_document(document, {640, 360});  // accepted, because complete
  Regions(document).touched({0.25, 0.25, 0.5, 0.5});
}

// A result document, preceded by its frame's time.
void readResult(const std::string& text) {
  fuzz::Choices choices(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  const microseconds time(choices.number<std::int32_t>());
  const std::string document = text.substr(std::min(text.size(), sizeof(std::int32_t)));
  lm::host::detector::Boxes boxes = boxes_of(document);
  for (lm::host::detector::Box& box : boxes) box.regions = {document};
  const std::string line = result_line(choices.byte(), time, boxes, choices.number<std::int64_t>());
  fuzz::require(line.find('\n') == std::string::npos, "a result of several lines");
  fuzz::require(parse_json(line).isObject(), "a result line that is not JSON");
  fuzz::require(share_under(boxes) >= 0 && share_under(boxes) <= 1, "more than the whole frame");
  for (const lm::host::detector::Box& box : boxes) {
    const cv::Rect pixels = pixels_of(box.area, {640, 360});
    fuzz::require((pixels & cv::Rect(0, 0, 640, 360)) == pixels, "a box drawn outside its frame");
  }
}

// Option values: spans, sizes, shards, broker addresses.
void readValue(const std::string& text) {
  if (const auto span = parse_span(text)) fuzz::require(span->from <= span->to, "a span that runs back");
  if (const auto scale = parse_scale(text)) {
    const cv::Size size = scale->of({640, 360});
    fuzz::require(size.width > 0 && size.width <= 640 && size.height > 0 && size.height <= 360,
                  "a frame of no size, or a larger one");
  }
  try {
    const Shard shard = parse_shard(text);
    fuzz::require(shard.index < shard.count, "a shard that is none");
  } catch (const Failure& refused) {
    fuzz::require(!one_line(refused.what()).empty(), "refused without a cause");
  }
  try {
    const mqtt::Address address = mqtt::parse_address(text);
    fuzz::require(!address.host.empty() && address.port > 0 && address.port <= 65535,
                  "an address of nowhere");
  } catch (const std::invalid_argument& refused) {
    fuzz::require(!one_line(refused.what()).empty(), "refused without a cause");
  }
}

// The record of an archive's file: a record that can be read is written and read back unchanged.
void readRecord(const std::string& text) {
  const std::optional<Record> record = record_from(text);
  if (!record) return;
  const std::string written = to_json(*record);
  const std::optional<Record> again = record_from(written);
  fuzz::require(again && to_json(*again) == written, "a record changes when it is read");
}

// A container's timestamps.
void readTimes(const std::string& text) {
  fuzz::Choices choices(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  FrameClock clock(microseconds(choices.number<std::uint16_t>() + 1));
  microseconds last(-1);
  while (!choices.over()) {
    const bool stated = choices.flag();
    const microseconds time(choices.flag() ? choices.number<std::int64_t>() : choices.number<std::int16_t>());
    const microseconds now = clock.next(stated ? std::optional(time) : std::nullopt);
    fuzz::require(now > last, "time stands still or runs back");
    last = now;
    seconds_text(now);
    clock_text(now);
    const microseconds length(choices.number<std::int64_t>());
    const ProgressState state{1, now, believable_length(length), 25.0, 0};
    render_progress(choices.byte(), state);
    progress_line(state, choices.flag());
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  switch (data[0]) {
    case 'a':
      readArguments(text);
      break;
    case 'd':
      readAsDocument(text);
      break;
    case 'r':
      readResult(text);
      break;
    case 't':
      readTimes(text);
      break;
    case 'v':
      readValue(text);
      break;
    case 'j':
      readRecord(text);
      break;
    default:
      return -1;  // not useful in the corpus
  }
  return 0;
}
