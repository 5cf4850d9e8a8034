#include <unistd.h>

#include <cstdio>
#include <deque>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

#include "tests/support/capture.h"
#include "tests/system/orders.h"
#include "tests/system/scripted_clock.h"

namespace orders {
namespace {

// The calls so far; also printed when a sanitizer ends the program.
std::string calls;

#if defined(__SANITIZE_ADDRESS__)
void printCalls() {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, calls.data(), calls.size());
}
#endif

// Discards the library's output, which would bury the report.
class Quiet {
 public:
  Quiet() : out_(stdout), err_(stderr), nowhere_(std::fopen("/dev/null", "w")) { stdout = stderr = nowhere_; }
  ~Quiet() {
    stdout = out_;
    stderr = err_;
    std::fclose(nowhere_);
  }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  std::FILE* out_;
  std::FILE* err_;
  std::FILE* nowhere_;
};

std::vector<Operation> allOperations() {
  std::vector<Operation> all;
  for (const auto& part :
       {frameOperations, bufferOperations, configurationOperations, objectOperations, fieldOperations,
        planeOperations, tableOperations, sizeOperations, detectorOperations}) {
    for (const Operation& operation : part()) all.push_back(operation);
  }
  return all;
}

const Operation& anyOperation(const std::vector<Operation>& all, const Pair& pair, Dice& dice) {
  int total = 0;
  for (const Operation& operation : all) total += operation.allowed(pair) ? operation.weight : 0;
  int left = dice.below(total);
  for (const Operation& operation : all) {
    if (!operation.allowed(pair)) continue;
    left -= operation.weight;
    if (left < 0) return operation;
  }
  return all.front();
}

class Round {
 public:
  explicit Round(std::uint32_t seed) : dice_(seed) {
    for (int k = 0; k < 3; ++k) pairs_.emplace_back(dice_);
  }
  ~Round() {
    THRESH_SAME_PIXEL_x2 = 20;
    THRESH_SAME_PIXEL_x3 = 30;
  }
  Round(const Round&) = delete;
  Round& operator=(const Round&) = delete;

  // Makes one call. Returns what differs after it, or an empty string.
  std::string step() {
    const std::size_t number = static_cast<std::size_t>(dice_.below(static_cast<int>(pairs_.size())));
    Pair& pair = pairs_[number];
    passTime();
    moveBands();
    if (pair.hasEngine()) setModelInputs(pair.model());
    const Operation& operation = anyOperation(operations_, pair, dice_);
    std::string call = operation.name;
    calls += std::to_string(number) + ": " + operation.name + "\n";
    const std::size_t line = calls.size() - std::string(operation.name).size() - 1;
    if (pair.plain.engine) setModelInputs(pair.model());
    const std::string difference = operation.run(pair, dice_, call);
    calls.replace(line, std::string::npos, call + "\n");
    return difference.empty() ? pair.difference() : difference;
  }

  // Calls on one detector do not change the others.
  std::string others() {
    for (Pair& pair : pairs_) {
      const std::string difference = pair.difference();
      if (!difference.empty()) return difference;
    }
    return "";
  }

 private:
  void passTime() {
    timeval now = scriptedTime();
    now.tv_usec += dice_.chance(80) ? dice_.between(20000, 300000) : dice_.between(1, 900000);
    now.tv_sec += now.tv_usec / 1000000;
    now.tv_usec %= 1000000;
    setScriptedTime(now);
  }

  // All detectors share the exported bands.
  void moveBands() {
    if (!dice_.chance(1)) return;
    THRESH_SAME_PIXEL_x2 = dice_.between(11, 40);
    THRESH_SAME_PIXEL_x3 = dice_.between(11, 60);
    calls +=
        "bands " + std::to_string(THRESH_SAME_PIXEL_x2) + ", " + std::to_string(THRESH_SAME_PIXEL_x3) + "\n";
  }

  static void setModelInputs(plain::Model& model) {
    model.now = scriptedTime();
    model.thresholdX2 = THRESH_SAME_PIXEL_x2;
    model.thresholdX3 = THRESH_SAME_PIXEL_x3;
  }

  const std::vector<Operation> operations_ = allOperations();
  Dice dice_;
  std::deque<Pair> pairs_;
};

}  // namespace

std::string run(std::uint32_t seed, int steps) {
#if defined(__SANITIZE_ADDRESS__)
  __sanitizer_set_death_callback(printCalls);
#endif
  const Quiet quiet;
  setScriptedTime({1700000000, 0});
  lm::test::hostLog().clear();
  calls = "seed " + std::to_string(seed) + ", calls of the detectors 0, 1, 2:\n";
  Round round(seed);
  for (int k = 0; k < steps; ++k) {
    std::string difference = round.step();
    if (difference.empty() && (k % 25 == 0 || k + 1 == steps)) difference = round.others();
    if (difference.empty()) continue;
    return calls + "seed " + std::to_string(seed) + ", step " + std::to_string(k) + ": " + difference;
  }
  return "";
}

}  // namespace orders
