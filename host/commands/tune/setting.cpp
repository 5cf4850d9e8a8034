#include "host/commands/tune/setting.h"

#include <algorithm>
#include <charconv>

namespace lm::host::commands::tune {
namespace {

constexpr int kUsualAdaptation = 3;

// The shortest decimal text that reads back as the same number, independent of the locale.
std::string decimal_text(double value) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

}  // namespace

Members members_of(const Setting& setting) {
  const MinBox& box = kMinBoxes.at(setting.min_box);
  return {{"sensitivity", std::to_string(setting.sensitivity)},
          {"lcAdap", std::to_string(setting.adaptation)},
          {"minBoxW", decimal_text(box.width)},
          {"minBoxH", decimal_text(box.height)}};
}

std::vector<Setting> coarse_grid() {
  std::vector<Setting> grid;
  for (const int sensitivity : {1, 3, kLevels}) {
    for (const std::size_t box : {0U, 3U, 6U}) grid.push_back({sensitivity, kUsualAdaptation, box});
  }
  return grid;
}

std::vector<Setting> neighbours(const Setting& best) {
  std::vector<Setting> found;
  const int least = std::max(1, best.sensitivity - 1);
  const int most = std::min(kLevels, best.sensitivity + 1);
  const std::size_t smallest = best.min_box - std::min<std::size_t>(best.min_box, 1);
  const std::size_t largest = std::min(best.min_box + 1, kMinBoxes.size() - 1);
  for (int sensitivity = least; sensitivity <= most; ++sensitivity) {
    for (std::size_t box = smallest; box <= largest; ++box) {
      const Setting setting{sensitivity, best.adaptation, box};
      if (setting != best) found.push_back(setting);
    }
  }
  return found;
}

std::vector<Setting> other_adaptations(const Setting& best) {
  return {{best.sensitivity, 1, best.min_box}, {best.sensitivity, kLevels, best.min_box}};
}

}  // namespace lm::host::commands::tune
