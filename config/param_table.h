// The keys of the parameter list: how each value is converted, which values are accepted and what they set.
//
// A template over the holder of the settings: the engine (kAMBLE), or a record with fields of the same names
// (config/settings.h) where there is no engine.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "engine/rules.h"
#include "simd/samples.h"

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

enum class Conversion { integer, real };  // std::stoi or std::stof; a double holds both exactly

template <typename Settings>
struct ParamRow {
  std::string_view key;
  Conversion conversion;
  const char* range;                                // the accepted values, in words
  bool (*accepts)(double value);                    // a NaN is in no range
  void (*store)(Settings& settings, double value);  // of an accepted value
  void (*fallBack)(Settings& settings) = nullptr;   // of a refused one; null changes nothing
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
// Kept: a positive life is refused, zero and negative ones are stored.
inline bool isNotPositive(double value) { return value <= 0.0; }
inline bool isSensitivity(double value) { return findLevel(sensitivityLevels, value) != nullptr; }
inline bool isAdaptation(double value) { return findLevel(adaptationLevels, value) != nullptr; }

// ---- effects ----------------------------------------------------------------------------------------------

template <typename Settings, auto field>
void storeInteger(Settings& settings, double value) {
  settings.*field = static_cast<std::int32_t>(value);
}
template <typename Settings, auto field>
void storeFraction(Settings& settings, double value) {
  settings.*field = static_cast<float>(value);
}
template <typename Settings, auto field>
void storeSwitch(Settings& settings, double value) {
  settings.*field = value > 0.0;
}

template <typename Settings>
void storeThresholds(Settings& settings, const SensitivityLevel& level) {
  settings.thrMatch = level.thrMatch;
  settings.thrHeuris = level.thrHeuris;
}
template <typename Settings>
void storeSensitivity(Settings& settings, double value) {
  // Found in the namespace of the settings: the one for the engine writes to the host's log.
  if (value == autoSensitivityLevel) enableAutoSensitivity(settings);
  storeThresholds(settings, *findLevel(sensitivityLevels, value));
}
// Kept: a refused sensitivity still sets the thresholds of level 3.
template <typename Settings>
void fallBackSensitivity(Settings& settings) {
  storeThresholds(settings, sensitivityFallback);
}
template <typename Settings>
void storeAutoThresholds(Settings& settings, double /*value*/) {
  storeThresholds(settings, *findLevel(sensitivityLevels, autoSensitivityLevel));
}

template <typename Settings>
void storeAdaptation(Settings& settings, double value) {
  settings.thrIllum = findLevel(adaptationLevels, value)->thrIllum;
}
// Kept: a refused adaptation level still sets the threshold of level 3.
template <typename Settings>
void fallBackAdaptation(Settings& settings) {
  settings.thrIllum = adaptationFallback.thrIllum;
}

template <typename Settings>
void storeStaticLife(Settings& settings, double value) {
  settings.lifeStatic = static_cast<std::int32_t>(value);
  settings.lifeStaticFrm = staticLifeFrames(settings.lifeStatic, settings.frmRate);
}

// ---- the table --------------------------------------------------------------------------------------------

// In order of lookup.
template <typename S>
inline constexpr ParamRow<S> paramTable[] = {
    {"frmW", Conversion::integer, "1 or more", atLeast<1>, storeInteger<S, &S::szImgX>},
    {"frmH", Conversion::integer, "1 or more", atLeast<1>, storeInteger<S, &S::szImgY>},
    {"frmChn", Conversion::integer, "1 or more", atLeast<1>, storeInteger<S, &S::frmChn>},
    {"sensitivity", Conversion::integer, "1 to 5, or -1", isSensitivity, storeSensitivity<S>,
     fallBackSensitivity<S>},
    {"lcAdap", Conversion::integer, "1 to 5", isAdaptation, storeAdaptation<S>, fallBackAdaptation<S>},
    {"minBoxW", Conversion::real, "above 0, at most 1", isFraction, storeFraction<S, &S::minObjW>},
    {"minBoxH", Conversion::real, "above 0, at most 1", isFraction, storeFraction<S, &S::minObjH>},
    {"lifeStatic", Conversion::integer, "0 or less", isNotPositive, storeStaticLife<S>},
    {"sensitivity_auto", Conversion::integer, "1", within<1, 1>, storeAutoThresholds<S>},
    {"GHOST_SUPPRESSION", Conversion::integer, "any", isAny, storeSwitch<S, &S::ghostSuppression>},
    {"ILLUMINATION_CHANGE", Conversion::integer, "any", isAny, storeSwitch<S, &S::illumChange>},
    {"MIN_MATCH_NUM", Conversion::integer, "1 to 20", within<1, samplesPerPixel>,
     storeInteger<S, &S::minMatchNum>},
    {"MIN_MATCH_DIST", Conversion::integer, "1 or more", atLeast<1>, storeInteger<S, &S::thrMatch>},
    {"THR_DIFF_HEURISTIC", Conversion::integer, "0 or more", atLeast<0>, storeInteger<S, &S::thrHeuris>},
    {"NUM_SEGMENT_LOCK", Conversion::integer, "1 to 20", within<1, samplesPerPixel>,
     storeInteger<S, &S::numSegmentLock>},
    {"NUM_PERIOD_LOCK", Conversion::integer, "1 or more", atLeast<1>, storeInteger<S, &S::numPeriodLock>},
    {"MIN_BOUNDING_BOX_W", Conversion::real, "above 0, at most 1", isFraction, storeFraction<S, &S::minObjW>},
    {"MIN_BOUNDING_BOX_H", Conversion::real, "above 0, at most 1", isFraction, storeFraction<S, &S::minObjH>},
};

// The row of `key`, or null.
template <typename Settings>
const ParamRow<Settings>* findParam(std::string_view key) {
  const auto& table = paramTable<Settings>;
  const auto* row =
      std::find_if(std::begin(table), std::end(table), [&](const auto& r) { return r.key == key; });
  return row == std::end(table) ? nullptr : row;
}

// Applies the value of a row to the settings. Returns whether it was accepted.
template <typename Settings>
bool applyParam(const ParamRow<Settings>& row, Settings& settings, double value) {
  if (row.accepts(value)) {
    row.store(settings, value);
    return true;
  }
  if (row.fallBack != nullptr) row.fallBack(settings);
  return false;
}

}  // namespace lm
