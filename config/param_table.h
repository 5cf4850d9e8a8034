// The keys of the parameter list: how each value is converted, which values are accepted and what they set.
#pragma once

#include <cmath>
#include <cstdint>
#include <string_view>

#include "engine/kamble.h"
#include "engine/rules.h"

namespace lm {

// Thresholds of a sensitivity level.
struct SensitivityLevel {
  std::int32_t level;
  std::int32_t thrMatch;
  std::int32_t thrHeuris;
};
inline constexpr SensitivityLevel sensitivityLevels[] = {
    {1, 20, 18}, {2, 17, 15}, {3, 13, 12}, {4, 9, 11}, {5, 7, 10}, {-1, 7, 10},
};
inline constexpr std::int32_t autoSensitivityLevel = -1;
inline constexpr SensitivityLevel sensitivityFallback = {3, 13, 12};

// Illumination threshold of an adaptation level.
struct AdaptationLevel {
  std::int32_t level;
  std::int32_t thrIllum;
};
inline constexpr AdaptationLevel adaptationLevels[] = {{1, 20}, {2, 15}, {3, 10}, {4, 5}, {5, 2}};
inline constexpr AdaptationLevel adaptationFallback = {3, 10};

// The row of `level`, or null.
template <typename Row, std::size_t count>
constexpr const Row* findLevel(const Row (&rows)[count], double level) {
  for (const Row& row : rows) {
    if (row.level == level) return &row;
  }
  return nullptr;
}

enum class Conversion { integer, real };  // std::stoi or std::stof; either value fits a double exactly

struct ParamRow {
  std::string_view key;
  Conversion conversion;
  const char* range;                            // the accepted values, in words
  bool (*accepts)(double value);                // a NaN is in no range
  void (*store)(kAMBLE& engine, double value);  // of an accepted value
  void (*fallBack)(kAMBLE& engine) = nullptr;   // of a refused one; null leaves the engine as it is
};

// ---- ranges -----------------------------------------------------------------------------------------------

template <int low>
bool atLeast(double value) {
  return value >= low;
}
template <int low, int high>
bool within(double value) {
  return value >= low && value <= high;
}
inline bool isFraction(double value) { return value > 0.0 && value <= 1.0; }
inline bool isAny(double /*value*/) { return true; }
// Kept: a positive life is refused, zero and below are stored.
inline bool isNotPositive(double value) { return value <= 0.0; }
inline bool isSensitivity(double value) { return findLevel(sensitivityLevels, value) != nullptr; }
inline bool isAdaptation(double value) { return findLevel(adaptationLevels, value) != nullptr; }

// ---- effects ----------------------------------------------------------------------------------------------

template <auto field>
void storeInteger(kAMBLE& engine, double value) {
  engine.*field = static_cast<std::int32_t>(value);
}
template <auto field>
void storeFraction(kAMBLE& engine, double value) {
  engine.*field = static_cast<float>(value);
}
template <auto field>
void storeSwitch(kAMBLE& engine, double value) {
  engine.*field = value > 0.0;
}

inline void storeThresholds(kAMBLE& engine, const SensitivityLevel& level) {
  engine.thrMatch = level.thrMatch;
  engine.thrHeuris = level.thrHeuris;
}
void storeSensitivity(kAMBLE& engine, double value);  // -1 goes to the host's log as well (set_param.cpp)
// Kept: a sensitivity that is refused sets the thresholds of level 3 all the same.
inline void fallBackSensitivity(kAMBLE& engine) { storeThresholds(engine, sensitivityFallback); }
inline void storeAutoThresholds(kAMBLE& engine, double /*value*/) {
  storeThresholds(engine, *findLevel(sensitivityLevels, autoSensitivityLevel));
}

inline void storeAdaptation(kAMBLE& engine, double value) {
  engine.thrIllum = findLevel(adaptationLevels, value)->thrIllum;
}
// Kept: an adaptation level that is refused sets the threshold of level 3 all the same.
inline void fallBackAdaptation(kAMBLE& engine) { engine.thrIllum = adaptationFallback.thrIllum; }

inline void storeStaticLife(kAMBLE& engine, double value) {
  engine.lifeStatic = static_cast<std::int32_t>(value);
  engine.lifeStaticFrm = staticLifeFrames(engine.lifeStatic, engine.frmRate);
}

// ---- the table --------------------------------------------------------------------------------------------

// In the order in which a key is looked up.
inline constexpr ParamRow paramTable[] = {
    {"frmW", Conversion::integer, "1 or more", atLeast<1>, storeInteger<&kAMBLE::szImgX>},
    {"frmH", Conversion::integer, "1 or more", atLeast<1>, storeInteger<&kAMBLE::szImgY>},
    {"frmChn", Conversion::integer, "1 or more", atLeast<1>, storeInteger<&kAMBLE::frmChn>},
    {"sensitivity", Conversion::integer, "1 to 5, or -1", isSensitivity, storeSensitivity,
     fallBackSensitivity},
    {"lcAdap", Conversion::integer, "1 to 5", isAdaptation, storeAdaptation, fallBackAdaptation},
    {"minBoxW", Conversion::real, "above 0, at most 1", isFraction, storeFraction<&kAMBLE::minObjW>},
    {"minBoxH", Conversion::real, "above 0, at most 1", isFraction, storeFraction<&kAMBLE::minObjH>},
    {"lifeStatic", Conversion::integer, "0 or less", isNotPositive, storeStaticLife},
    {"sensitivity_auto", Conversion::integer, "1", within<1, 1>, storeAutoThresholds},
    {"GHOST_SUPPRESSION", Conversion::integer, "any", isAny, storeSwitch<&kAMBLE::ghostSuppression>},
    {"ILLUMINATION_CHANGE", Conversion::integer, "any", isAny, storeSwitch<&kAMBLE::illumChange>},
    {"MIN_MATCH_NUM", Conversion::integer, "1 to 20", within<1, 20>, storeInteger<&kAMBLE::minMatchNum>},
    {"MIN_MATCH_DIST", Conversion::integer, "1 or more", atLeast<1>, storeInteger<&kAMBLE::thrMatch>},
    {"THR_DIFF_HEURISTIC", Conversion::integer, "0 or more", atLeast<0>, storeInteger<&kAMBLE::thrHeuris>},
    {"NUM_SEGMENT_LOCK", Conversion::integer, "1 to 20", within<1, 20>,
     storeInteger<&kAMBLE::numSegmentLock>},
    {"NUM_PERIOD_LOCK", Conversion::integer, "1 or more", atLeast<1>, storeInteger<&kAMBLE::numPeriodLock>},
    {"MIN_BOUNDING_BOX_W", Conversion::real, "above 0, at most 1", isFraction,
     storeFraction<&kAMBLE::minObjW>},
    {"MIN_BOUNDING_BOX_H", Conversion::real, "above 0, at most 1", isFraction,
     storeFraction<&kAMBLE::minObjH>},
};

}  // namespace lm
