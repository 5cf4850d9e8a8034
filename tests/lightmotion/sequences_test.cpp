// A handle gives what the entry points give as the first detector of a process, over all sequences that a
// document can configure: the same texts, whatever lives beside it and however its rows are padded.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "engine/kamble.h"
#include "plugin/entry_points.h"
#include "tests/lightmotion/fixture.h"
#include "tests/support/capture.h"
#include "tests/system/driver.h"
#include "tests/system/scripted_clock.h"

namespace lm::test {
namespace {

using testing::IsEmpty;

constexpr int fewest = 120;  // sequences that must have been compared

// The entry points' time: 0 and less are unknown.
std::int64_t timeOf(const std::string& timestamp) {
  const std::int64_t milliseconds = std::stoll(timestamp);
  return milliseconds <= 0 ? -1 : milliseconds;
}

bool started(const std::string& document) {
  std::srand(1);  // as in a process that never seeded
  try {
    return initialization(document.c_str());
  } catch (const std::exception&) {
    return false;
  }
}

// What the entry points answer; none for a timestamp that they throw for.
std::optional<std::string> answerOf(const Frame& frame) {
  try {
    int length = 0;
    frameProc(frame.pixels.data(), frame.timestamp.c_str(), &length);
    std::string text(static_cast<std::size_t>(length), '\0');
    getRes(text.data());
    return text;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

// With the timestamp as a handle writes it.
std::string withTime(std::string text, const Frame& frame) {
  const std::string from = "\"timestamp\":\"" + frame.timestamp + '"';
  const std::size_t at = text.find(from);
  if (at == std::string::npos) return text;
  return text.replace(at, from.size(), "\"timestamp\":\"" + std::to_string(timeOf(frame.timestamp)) + '"');
}

std::vector<std::uint8_t> padded(const Frame& frame, std::size_t rowBytes, std::size_t stride) {
  std::vector<std::uint8_t> rows;
  for (std::size_t at = 0; at < frame.pixels.size(); at += rowBytes) {
    if (at > 0) rows.resize(rows.size() + stride - rowBytes, static_cast<std::uint8_t>(at));
    rows.insert(rows.end(), frame.pixels.begin() + static_cast<std::ptrdiff_t>(at),
                frame.pixels.begin() + static_cast<std::ptrdiff_t>(at + rowBytes));
  }
  return rows;
}

// Red and blue change places.
Frame swapped(Frame frame) {
  const auto step = static_cast<std::size_t>(frame.channels);
  for (std::size_t i = 0; step >= 3 && i + 2 < frame.pixels.size(); i += step) {
    std::swap(frame.pixels[i], frame.pixels[i + 2]);
  }
  return frame;
}

// How a handle gets a sequence.
struct Way {
  std::size_t padding = 0;
  bool redFirst = false;
};

enum class Outcome { same, different, refusedByBoth, refusedByHandle };

bool isFed(const Sequence& sequence) {
  const auto isSize = [](const std::string& entry) { return entry.starts_with("frm"); };
  if (sequence.before || std::any_of(sequence.entries.begin(), sequence.entries.end(), isSize)) return false;
  const int channels = sequence.frame(0).channels;
  return channels == 1 || channels == 3 || channels == 4;
}

std::string formatOf(int channels) { return channels == 3 ? "rgb" : "rgbx"; }

Outcome outcomeOf(const Sequence& sequence, const Way& way, std::string& difference) {
  Frame frame = sequence.frame(0);
  const int channels = frame.channels;
  std::string document = ::documentOf(sequence, channels);
  const bool accepted = started(document);
  const bool turned = way.redFirst && channels >= 3;
  if (turned) document.insert(1, "\"format\": \"" + formatOf(channels) + "\", ");
  const Detector detector(create(document).detector);
  if (detector == nullptr || !accepted) {
    terminate();
    return accepted ? Outcome::refusedByHandle
                    : (detector == nullptr ? Outcome::refusedByBoth : Outcome::same);
  }
  const auto rowBytes = static_cast<std::size_t>(sequence.width * channels);
  const std::size_t stride = rowBytes + way.padding;
  for (int k = 0; k < sequence.frames; ++k) {
    if (k > 0) frame = sequence.frame(k);
    if (frame.channels != channels) break;
    if (sequence.clock) setScriptedTime(sequence.clock(k));
    const std::optional<std::string> expected = answerOf(frame);
    if (!expected) continue;
    const std::vector<std::uint8_t> rows = padded(turned ? swapped(frame) : frame, rowBytes, stride);
    const int count =
        lightmotion_process(detector.get(), rows.data(), stride, timeOf(frame.timestamp), nullptr);
    const std::string text = count < 0 ? "error" : lightmotion_json(detector.get(), nullptr);
    if (text == withTime(*expected, frame)) continue;
    difference = sequence.name + ", frame " + std::to_string(k) + ": " + text + " instead of " + *expected;
    break;
  }
  terminate();
  return difference.empty() ? Outcome::same : Outcome::different;
}

// Over all sequences that both accept; what differs first in each.
std::vector<std::string> differencesOver(const Way& way) {
  const Capture quiet(stdout);
  const Capture alsoQuiet(stderr);
  std::vector<std::string> differences;
  int compared = 0;
  for (const Sequence& sequence : allSequences()) {
    if (!isFed(sequence)) continue;
    std::string difference;
    if (outcomeOf(sequence, way, difference) == Outcome::same) ++compared;
    if (!difference.empty()) differences.push_back(difference);
  }
  if (compared < fewest) differences.push_back("only " + std::to_string(compared) + " sequences compared");
  return differences;
}

TEST(Handle, GivesWhatTheEntryPointsGiveOverAllSequences) { EXPECT_THAT(differencesOver({}), IsEmpty()); }

TEST(Handle, GivesTheSameForPaddedRows) {
  EXPECT_THAT(differencesOver({.padding = 1}), IsEmpty());
  EXPECT_THAT(differencesOver({.padding = 37}), IsEmpty());
}

TEST(Handle, GivesForRgbWhatBgrOfTheSwappedPictureGives) {
  EXPECT_THAT(differencesOver({.redFirst = true}), IsEmpty());
}

// What a document makes meaningless is refused here and accepted there; nothing else.
TEST(Handle, RefusesOnlyWhatCanNeverFindAnything) {
  std::vector<std::string> others;
  {
    const Capture quiet(stdout);
    const Capture alsoQuiet(stderr);
    for (const Sequence& sequence : allSequences()) {
      std::string difference;
      if (!isFed(sequence) || outcomeOf(sequence, {}, difference) != Outcome::refusedByHandle) continue;
      const std::string message = create(::documentOf(sequence, sequence.frame(0).channels)).message;
      const bool meaningless = message.find("nothing is ever detected") != std::string::npos ||
                               message.find("nothing is watched") != std::string::npos ||
                               message.find("no box can be large enough") != std::string::npos;
      if (!meaningless) others.push_back(sequence.name + ": " + message);
    }
  }
  EXPECT_THAT(others, IsEmpty());
}

}  // namespace
}  // namespace lm::test
