#include "host/base/time_text.h"

namespace lm::host::base {
namespace {

using namespace std::chrono;

std::string padded(long long value, std::size_t digits) {
  std::string text = std::to_string(value);
  return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

}  // namespace

std::string seconds_text(microseconds time) {
  const long long thousandths = round<milliseconds>(time).count();
  return std::to_string(thousandths / 1000) + "." + padded(thousandths % 1000, 3);
}

double seconds_number(microseconds time) {
  return static_cast<double>(round<milliseconds>(time).count()) / 1000;
}

std::string clock_text(microseconds time) {
  const long long seconds = duration_cast<std::chrono::seconds>(time).count();
  const std::string rest = padded(seconds % 60, 2);
  const long long minutes = seconds / 60;
  if (minutes < 60) return std::to_string(minutes) + ":" + rest;
  return std::to_string(minutes / 60) + ":" + padded(minutes % 60, 2) + ":" + rest;
}

}  // namespace lm::host::base
