#include "host/source/live/scale.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace lm::host::source::live {
namespace {

constexpr int kLargest = 1 << 16;

// `text` as a number, if all of it is one.
template <typename Number>
std::optional<Number> whole_number(std::string_view text) {
  Number value{};
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && rest == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

int reduced(int length, double factor, int wanted) {
  const int result = wanted > 0 ? wanted : static_cast<int>(std::lround(length * factor));
  return std::clamp(result, 1, length);
}

}  // namespace

cv::Size Scale::of(cv::Size frame) const {
  return {reduced(frame.width, factor, size.width), reduced(frame.height, factor, size.height)};
}

std::optional<Scale> parse_scale(const std::string& text) {
  const std::string_view all = text;
  const std::size_t cross = all.find('x');
  if (cross == std::string_view::npos) {
    const auto factor = whole_number<double>(all);
    return factor && *factor > 0 && *factor <= 1 ? std::optional(Scale{*factor, {}, true}) : std::nullopt;
  }
  const auto width = whole_number<int>(all.substr(0, cross));
  const auto height = whole_number<int>(all.substr(cross + 1));
  const auto fits = [](std::optional<int> length) { return length && *length > 0 && *length <= kLargest; };
  if (!fits(width) || !fits(height)) return std::nullopt;
  return Scale{1, {*width, *height}, true};
}

}  // namespace lm::host::source::live
