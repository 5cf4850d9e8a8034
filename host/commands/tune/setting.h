// What is tried: the settings that determine what counts as motion.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace lm::host::commands::tune {

// Minimum box sizes in ascending order, as shares of the frame's width and height. Each is about 1.5 times as
// large as the previous one; every second one doubles.
struct MinBox {
  double width;
  double height;
};
constexpr std::array<MinBox, 9> kMinBoxes{{{0.01, 0.025},
                                           {0.015, 0.0375},
                                           {0.02, 0.05},
                                           {0.03, 0.075},
                                           {0.04, 0.1},
                                           {0.06, 0.15},
                                           {0.08, 0.2},
                                           {0.12, 0.3},
                                           {0.16, 0.4}}};

struct Setting {
  int sensitivity = 3;      // 1 (least) to 5
  int adaptation = 3;       // "lcAdap", 1 (slowest) to 5
  std::size_t min_box = 2;  // step of kMinBoxes
  bool operator==(const Setting&) const = default;
};

constexpr int kLevels = 5;  // of sensitivity and adaptation

// Keys and values of the document.
using Members = std::vector<std::pair<std::string, std::string>>;
Members members_of(const Setting& setting);

// The settings tried first: low, medium and high sensitivity with small, medium and large minimum boxes.
std::vector<Setting> coarse_grid();

// The settings to try when `best` is the best so far: sensitivity and minimum box size one step away, and the
// slowest and the fastest adaptation.
std::vector<Setting> neighbours(const Setting& best);
std::vector<Setting> other_adaptations(const Setting& best);

}  // namespace lm::host::commands::tune
