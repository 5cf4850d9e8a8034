#include "host/base/time_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

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

std::string utc_text(WallTime time) {
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(floor<milliseconds>(time - day));
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  return text.data();
}

std::string file_time(WallTime time) {
  std::string text = utc_text(time);
  std::ranges::replace(text, ':', '-');
  return text;
}

}  // namespace lm::host::base
