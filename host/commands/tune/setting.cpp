#include "host/commands/tune/setting.h"

#include <json/json.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/detector/adapt.h"
#include "host/detector/document.h"

namespace lm::host::commands::tune {
namespace {

// The shortest decimal text that reads back as the same number, independent of the locale.
std::string decimal_text(double value) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

std::optional<double> number_of(const Json::Value& value) {
  if (value.isNumeric()) return value.asDouble();
  const std::string text = value.isString() ? value.asString() : "";
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

bool equal(const MinBox& a, const MinBox& b) { return a.width == b.width && a.height == b.height; }

// Steps of half an octave.
double steps_between(const MinBox& a, const MinBox& b) {
  return std::abs(std::log2(a.width * a.height / (b.width * b.height)));
}

}  // namespace

Own own_values(const std::string& document) {
  Json::Value root = detector::readDocument(document);
  Own own;
  own.chosen = detector::adapts(root) && !detector::sets(root, "sensitivity");
  if (detector::adapts(root)) root = detector::completed(root);
  if (!own.chosen) own.sensitivity = number_of(root["sensitivity"]);
  own.adaptation = number_of(root["lcAdap"]).value_or(own.adaptation);
  own.min_box.width = number_of(root["minBoxW"]).value_or(own.min_box.width);
  own.min_box.height = number_of(root["minBoxH"]).value_or(own.min_box.height);
  return own;
}

Members members_of(const Setting& setting) {
  Members members;
  if (setting.sensitivity) members.emplace_back("sensitivity", std::to_string(*setting.sensitivity));
  if (setting.adaptation) members.emplace_back("lcAdap", std::to_string(*setting.adaptation));
  if (setting.min_box) {
    const MinBox& box = kMinBoxes.at(*setting.min_box);
    members.emplace_back("minBoxW", decimal_text(box.width));
    members.emplace_back("minBoxH", decimal_text(box.height));
  }
  return members;
}

std::array<std::string, 4> texts_of(const Setting& setting, const Own& own) {
  const MinBox& box = setting.min_box ? kMinBoxes.at(*setting.min_box) : own.min_box;
  std::string sensitivity = own.chosen        ? "auto"
                            : own.sensitivity ? decimal_text(*own.sensitivity)
                                              : "default";
  if (setting.sensitivity) sensitivity = std::to_string(*setting.sensitivity);
  return {std::move(sensitivity), decimal_text(setting.adaptation.value_or(own.adaptation)),
          decimal_text(box.width), decimal_text(box.height)};
}

Setting reduced(Setting setting, const Own& own) {
  if (setting.sensitivity && *setting.sensitivity == own.sensitivity) setting.sensitivity.reset();
  if (setting.adaptation && *setting.adaptation == own.adaptation) setting.adaptation.reset();
  if (setting.min_box && equal(kMinBoxes.at(*setting.min_box), own.min_box)) setting.min_box.reset();
  return setting;
}

std::vector<Setting> variations(const Setting& best, const Own& own) {
  // Without a value: that of the starting configuration.
  std::vector<Setting> all{{std::nullopt, best.adaptation, best.min_box},
                           {best.sensitivity, std::nullopt, best.min_box},
                           {best.sensitivity, best.adaptation, std::nullopt}};
  for (int level = 1; level <= kLevels; ++level) all.push_back({level, best.adaptation, best.min_box});
  for (const int level : {1, kLevels}) all.push_back({best.sensitivity, level, best.min_box});
  for (std::size_t box = 0; box < kMinBoxes.size(); ++box) {
    all.push_back({best.sensitivity, best.adaptation, box});
  }
  std::vector<Setting> found;
  for (const Setting& setting : all) {
    const Setting one = reduced(setting, own);
    if (one != best && std::ranges::find(found, one) == found.end()) found.push_back(one);
  }
  return found;
}

Distance distance(const Setting& setting, const Own& own) {
  const double from = own.sensitivity.value_or(kMiddle);
  const double sensitivity = setting.sensitivity ? 1 + std::abs(*setting.sensitivity - from) : 0;
  const double adaptation = setting.adaptation ? std::abs(*setting.adaptation - own.adaptation) : 0;
  const double box = setting.min_box ? steps_between(kMinBoxes.at(*setting.min_box), own.min_box) : 0;
  return {static_cast<double>(setting.sensitivity.has_value() + setting.adaptation.has_value() +
                              setting.min_box.has_value()),
          sensitivity, adaptation, box};
}

}  // namespace lm::host::commands::tune
