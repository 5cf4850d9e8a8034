// What is tried: changes of the settings that determine what counts as motion.
#pragma once

#include <array>
#include <optional>
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

// What differs from the starting configuration; nothing: that configuration itself.
struct Setting {
  std::optional<int> sensitivity;      // 1 (least) to 5
  std::optional<int> adaptation;       // "lcAdap", 1 (slowest) to 5
  std::optional<std::size_t> min_box;  // step of kMinBoxes
  bool operator==(const Setting&) const = default;
};

constexpr int kLevels = 5;  // of sensitivity and adaptation
constexpr int kMiddle = 3;

// The values of the starting configuration, or the defaults of what it leaves out.
struct Own {
  std::optional<double> sensitivity;  // its default is between the levels; none too when it is chosen
  bool chosen = false;                // the sensitivity, while the detector runs (adapt)
  double adaptation = 4;
  MinBox min_box{0.05, 0.05};
};

Own own_values(const std::string& document);

// Keys and values of the document.
using Members = std::vector<std::pair<std::string, std::string>>;
Members members_of(const Setting& setting);

// All four values of a setting, for people, in the order sensitivity, lcAdap, minBoxW, minBoxH.
std::array<std::string, 4> texts_of(const Setting& setting, const Own& own);

// Without what is the configuration's own value.
Setting reduced(Setting setting, const Own& own);

// The settings that differ from `best` in one of the three: any other sensitivity, any other minimum box
// size, the slowest or the fastest adaptation.
std::vector<Setting> variations(const Setting& best, const Own& own);

// How far a setting is from the starting configuration, compared in order: the number of changes, then how
// far sensitivity, adaptation and minimum box size are changed. So another minimum box size is nearest.
using Distance = std::array<double, 4>;
Distance distance(const Setting& setting, const Own& own);

}  // namespace lm::host::commands::tune
