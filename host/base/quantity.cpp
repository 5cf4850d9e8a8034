#include "host/base/quantity.h"

#include <charconv>
#include <cmath>
#include <span>
#include <string_view>

namespace lm::host::base {
namespace {

struct Unit {
  std::string_view name;
  double factor;
};

constexpr Unit kSizes[] = {{"B", 1}, {"kB", 1e3}, {"MB", 1e6}, {"GB", 1e9}, {"TB", 1e12}};
constexpr Unit kAges[] = {{"s", 1}, {"min", 60}, {"h", 3600}, {"d", 86'400}, {"w", 604'800}};
constexpr double kLargest = 1e18;
constexpr double kOldest = 100 * 365.25 * 86'400;

std::optional<double> parse(std::string_view text, std::span<const Unit> units, double most) {
  double value = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const std::string_view name(rest, static_cast<std::size_t>(text.data() + text.size() - rest));
  for (const Unit& unit : units) {
    if (error != std::errc() || name != unit.name) continue;
    const double whole = std::round(value * unit.factor);
    if (whole >= 1 && whole <= most) return whole;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> parse_size(const std::string& text) {
  const std::optional<double> bytes = parse(text, kSizes, kLargest);
  return bytes ? std::optional(static_cast<std::uint64_t>(*bytes)) : std::nullopt;
}

std::optional<std::chrono::seconds> parse_age(const std::string& text) {
  const std::optional<double> seconds = parse(text, kAges, kOldest);
  return seconds ? std::optional(std::chrono::seconds(static_cast<std::int64_t>(*seconds))) : std::nullopt;
}

std::string size_text(std::uint64_t bytes) {
  const Unit* unit = &kSizes[0];
  for (const Unit& larger : kSizes) {
    if (static_cast<double>(bytes) >= larger.factor) unit = &larger;
  }
  const auto tenths = static_cast<std::uint64_t>(std::round(10 * static_cast<double>(bytes) / unit->factor));
  std::string text = std::to_string(tenths / 10);
  if (tenths % 10 != 0) text.append(".").append(std::to_string(tenths % 10));
  return text.append(" ").append(unit->name);
}

}  // namespace lm::host::base
