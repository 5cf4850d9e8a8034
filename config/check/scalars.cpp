#include "config/check/scalars.h"

#include <json/json.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "config/check/findings.h"
#include "config/document.h"
#include "config/param_entry.h"
#include "config/scalar_keys.h"

namespace lm::check {
namespace {

std::string inQuotes(const std::string& text) { return shown(Json::Value(text)); }

std::string withoutBlanksAround(const std::string& text) {
  constexpr const char* blanks = " \t\n\v\f\r";
  const std::size_t begin = text.find_first_not_of(blanks);
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

// The value that stays in effect when a value of this key is refused.
std::string kept(const std::string& key, const Settings& settings) {
  if (key == "lifeStatic") return std::to_string(settings.lifeStatic) + " seconds are kept";
  return shown(static_cast<double>(key == "minBoxW" ? settings.minObjW : settings.minObjH)) + " is kept";
}

// A number of JSON; of a text, what follows the whole number is ignored.
bool isFractionForInteger(const char* key, const Json::Value& value) {
  const auto* row = findParam<Settings>(key);
  return row != nullptr && row->conversion == Conversion::integer && value.isNumeric() && !value.isIntegral();
}

class ScalarReader {
 public:
  ScalarReader(Findings& findings, Settings& settings) : findings_(findings), settings_(settings) {}

  void read(const std::string& key, const std::string& text, bool isSize) {
    const bool own = entry_.scan(key + ' ' + text);
    if (!own && isSize) return;  // reported already: the plug-in converts sizes first
    if (!own) {
      findings_.add(
          Severity::warning, key,
          "is empty: " + findings_.who() + " reuses " + inQuotes(entry_.value) + " from \"" + giver_ + "\"",
          "set a value or remove the key");
    }
    const auto* row = findParam<Settings>(key);
    if (row == nullptr) {
      findings_.addToKey(Severity::warning, key,
                         "has no effect: " + findings_.who() + " reads it but never uses it", "remove it");
    } else {
      convert(*row, own ? text : entry_.value, isSize);
    }
    if (own) giver_ = key;
  }

 private:
  void convert(const ParamRow<Settings>& row, const std::string& text, bool isSize) {
    const std::string key(row.key);
    double number = 0;
    std::size_t used = 0;
    try {
      number = convertParam(row.conversion, entry_.value, &used);
    } catch (const std::logic_error&) {  // of the conversions
      if (isSize) return;
      findings_.add(Severity::error, key,
                    std::string("must be a ") + (row.conversion == Conversion::integer ? "whole " : "") +
                        "number, not " + inQuotes(text) + "; " + findings_.who() + " refuses it",
                    row.range);
      return;
    }
    if (entry_.value.substr(0, used) != withoutBlanksAround(text)) {
      findings_.add(Severity::warning, key, inQuotes(text) + " is read as " + shown(number),
                    "write only the number");
    }
    const Settings before = settings_;
    if (applyParam(row, settings_, number)) {
      remark(key, number);
    } else if (!isSize) {
      refuse(row, shown(number), kept(key, before));
    }
  }

  // A value that is out of range.
  void refuse(const ParamRow<Settings>& row, const std::string& number, const std::string& stays) {
    const std::string key(row.key);
    const std::string outcome = row.fallBack != nullptr ? "the values of level 3 are used" : stays;
    const std::string hint = key == "lifeStatic" ? "remove it for the default of 3 seconds" : row.range;
    findings_.add(Severity::warning, key, number + " is out of range: " + outcome, hint);
  }

  // A value that is accepted but has unexpected consequences.
  void remark(const std::string& key, double number) {
    if (key == "sensitivity" && number == autoSensitivityLevel) {
      findings_.add(Severity::note, key,
                    "-1: uses the values of level 5 and adapts the minimum component size to the video");
    }
    if (key != "lifeStatic") return;
    if (number < 0) {
      findings_.add(Severity::error, key,
                    shown(number) + " makes everything background at once: nothing is ever detected",
                    "remove it for the default of 3 seconds");
    } else {
      findings_.add(Severity::warning, key,
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

Settings checkScalars(const Json::Value& document, const SizeTexts& sizes, Findings& findings) {
  Settings settings;
  ScalarReader reader(findings, settings);
  for (const ScalarKey<FrameSize>& key : scalarKeys<FrameSize>) {
    const Json::Value& value = document[key.name];
    const bool isSize = key.field != nullptr;
    if (isSize) {
      reader.read(key.name, sizes.at(key.name), true);
    } else if (findings.reads(value) && isFractionForInteger(key.name, value)) {
      findings.add(Severity::error, key.name, "must be a whole number, not " + shown(value),
                   findParam<Settings>(key.name)->range);
    } else if (findings.reads(value)) {
      reader.read(key.name, numberText(value), false);
    } else if (document.isMember(key.name) && findings.reader() == Reader::handle) {
      findings.add(Severity::error, key.name, "must be a number, not " + shown(value));
    } else if (document.isMember(key.name)) {
      findings.add(
          Severity::warning, key.name,
          shown(value) + " is not a string: the plug-in ignores it and uses the default",
          value.isNumeric() ? "write \"" + shown(value) + "\"" : "write a number in quotation marks");
    }
  }
  return settings;
}

}  // namespace lm::check
