#include "host/base/rotation.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "host/base/quantity.h"

namespace lm::host::base {
namespace {

constexpr std::string_view kDay = "0000-00-00";
constexpr std::string_view kSecond = "0000-00-00T00-00-00";

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::optional<Rotation> parse_rotation(const std::string& text) {
  if (text == "day") return Rotation{true, 0};
  const std::optional<std::uint64_t> bytes = parse_size(text);
  return bytes ? std::optional(Rotation{false, *bytes}) : std::nullopt;
}

std::string rotated_name(const std::string& path, const Rotation& rotation, WallTime last) {
  const std::filesystem::path file(path);
  const std::string time = rotation.daily ? file_time(last).substr(0, kDay.size())
                                          : file_time(last).substr(0, kSecond.size()) + "Z";
  return (file.parent_path() / (file.stem().string() + "-" + time + file.extension().string())).string();
}

std::string rotated_at(const std::string& path, const std::string& name) {
  const std::filesystem::path file(path);
  const std::string before = file.stem().string() + "-";
  const std::string after = file.extension().string();
  if (!name.starts_with(before) || !name.ends_with(after) || name.size() < before.size() + after.size())
    return "";
  std::string_view time(name);
  time = time.substr(before.size(), name.size() - before.size() - after.size());
  // A second file of the same time has a number after it.
  const auto is_number = [](std::string_view rest) {
    return rest.empty() ||
           (rest.front() == '-' && rest.size() > 1 && std::ranges::all_of(rest.substr(1), is_digit));
  };
  if (has_form(time.substr(0, kSecond.size()), kSecond) && time.substr(kSecond.size()).starts_with('Z') &&
      is_number(time.substr(kSecond.size() + 1)))
    return std::string(time.substr(0, kSecond.size()));
  if (has_form(time.substr(0, kDay.size()), kDay) && is_number(time.substr(kDay.size())))
    return std::string(time.substr(0, kDay.size())) + "T23-59-59";
  return "";
}

bool has_form(std::string_view text, std::string_view pattern) {
  return std::ranges::equal(text, pattern,
                            [](char c, char form) { return form == '0' ? is_digit(c) : c == form; });
}

}  // namespace lm::host::base
