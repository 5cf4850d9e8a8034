#include "host/detector/check/scalars.h"

#include <json/json.h>

#include <exception>
#include <string>
#include <string_view>

#include "config/param_entry.h"
#include "config/scalar_keys.h"
#include "host/detector/check/findings.h"
#include "host/detector/check/sizes.h"

namespace lm::host::detector::check {
namespace {

std::string in_quotes(const std::string& text) { return shown(Json::Value(text)); }

std::string without_blanks_around(const std::string& text) {
  constexpr const char* kBlanks = " \t\n\v\f\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// The value that stays in effect when a value of this key is refused.
std::string kept(const std::string& key, const Settings& settings) {
  if (key == "lifeStatic") return std::to_string(settings.lifeStatic) + " seconds are kept";
  return shown(static_cast<double>(key == "minBoxW" ? settings.minObjW : settings.minObjH)) + " is kept";
}

class Reader {
 public:
  Reader(Findings& findings, Settings& settings) : findings_(findings), settings_(settings) {}

  void read(const std::string& key, const std::string& text, bool is_size) {
    const bool own = entry_.scan(key + ' ' + text);
    if (!own && is_size) return;  // reported already: the plug-in converts sizes first
    if (!own) {
      findings_.add(Severity::kWarning, key,
                    "is empty: the plug-in reuses " + in_quotes(entry_.value) + " from \"" + giver_ + "\"",
                    "set a value or remove the key");
    }
    const auto* row = findParam<Settings>(key);
    if (row == nullptr) {
      findings_.add_to_key(Severity::kWarning, key, "has no effect: the plug-in reads it but never uses it",
                           "remove it");
    } else {
      convert(*row, own ? text : entry_.value, is_size);
    }
    if (own) giver_ = key;
  }

 private:
  void convert(const ParamRow<Settings>& row, const std::string& text, bool is_size) {
    const std::string key(row.key);
    double number = 0;
    std::size_t used = 0;
    try {
      number = convertParam(row.conversion, entry_.value, &used);
    } catch (const std::exception&) {
      if (is_size) return;
      findings_.add(Severity::kError, key,
                    std::string("must be a ") + (row.conversion == Conversion::integer ? "whole " : "") +
                        "number, not " + in_quotes(text) + "; the plug-in refuses it",
                    row.range);
      return;
    }
    if (entry_.value.substr(0, used) != without_blanks_around(text)) {
      findings_.add(Severity::kWarning, key, in_quotes(text) + " is read as " + shown(number),
                    "write only the number");
    }
    const Settings before = settings_;
    if (applyParam(row, settings_, number)) {
      remark(key, number);
    } else if (!is_size) {
      refuse(row, shown(number), kept(key, before));
    }
  }

  // A value that is out of range.
  void refuse(const ParamRow<Settings>& row, const std::string& number, const std::string& stays) {
    const std::string key(row.key);
    const std::string outcome = row.fallBack != nullptr ? "the values of level 3 are used" : stays;
    const std::string hint = key == "lifeStatic" ? "remove it for the default of 3 seconds" : row.range;
    findings_.add(Severity::kWarning, key, number + " is out of range: " + outcome, hint);
  }

  // A value that is accepted but has unexpected consequences.
  void remark(const std::string& key, double number) {
    if (key == "sensitivity" && number == autoSensitivityLevel) {
      findings_.add(Severity::kNote, key,
                    "-1: uses the values of level 5 and adapts the minimum component size to the video");
    }
    if (key != "lifeStatic") return;
    if (number < 0) {
      findings_.add(Severity::kError, key,
                    shown(number) + " makes everything background at once: nothing is ever detected",
                    "remove it for the default of 3 seconds");
    } else {
      findings_.add(Severity::kWarning, key,
                    "0: anything that stays nearly unchanged for a moment becomes background at once",
                    "remove it for the default of 3 seconds");
    }
  }

  Findings& findings_;
  Settings& settings_;
  EntryScanner entry_;
  std::string giver_;  // key whose value an empty value reuses
};

}  // namespace

Settings check_scalars(const Json::Value& document, const SettledSizes& sizes, Findings& findings) {
  Settings settings;
  Reader reader(findings, settings);
  for (const ScalarKey<Sizes>& key : scalarKeys<Sizes>) {
    const Json::Value& value = document[key.name];
    const bool is_size = key.field != nullptr;
    if (is_size) {
      reader.read(key.name, sizes.texts.at(key.name), true);
    } else if (value.isString()) {
      reader.read(key.name, value.asString(), false);
    } else if (document.isMember(key.name)) {
      findings.add(
          Severity::kWarning, key.name,
          shown(value) + " is not a string: the plug-in ignores it and uses the default",
          value.isNumeric() ? "write \"" + shown(value) + "\"" : "write a number in quotation marks");
    }
  }
  return settings;
}

}  // namespace lm::host::detector::check
