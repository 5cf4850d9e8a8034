#include "host/events/event_csv.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "host/base/csv.h"
#include "host/base/json_text.h"
#include "host/events/event_json.h"

namespace lm::host::events {
namespace {

// A column is a member of the event, or a member of such a member.
struct Column {
  const char* key;
  const char* within = nullptr;
};

constexpr Column kColumns[] = {
    {"id"},
    {"kind"},
    {"start"},
    {"end"},
    {"peak"},
    {"from"},
    {"to"},
    {"first_frame"},
    {"last_frame"},
    {"peak_frame"},
    {"frames_with_boxes"},
    {"most_boxes"},
    {"peak_share"},
    {"x", "envelope"},
    {"y", "envelope"},
    {"width", "envelope"},
    {"height", "envelope"},
    {"x", "largest"},
    {"y", "largest"},
    {"width", "largest"},
    {"height", "largest"},
    {"objects"},
    {"dwell"},
    {"crossings"},
    {"regions"},
    {"before", "light"},
    {"after", "light"},
    {"share", "light"},
    {"wall_start"},
    {"wall_end"},
    {"started"},
    {"ended"},
};

std::string heading(const Column& column) {
  return column.within == nullptr ? column.key : std::string(column.within).append("_").append(column.key);
}

std::string joined(const Json::Value& names) {
  std::string text;
  for (const Json::Value& item : names) {
    const Json::Value& name = !item.isObject() ? item : item.isMember("name") ? item["name"] : item["id"];
    text.append(text.empty() ? "" : ";").append(name.asString());
  }
  return text;
}

std::string cell(const Json::Value& event, const Column& column) {
  const Json::Value& object = column.within != nullptr ? event[column.within] : event;
  const Json::Value& value = object[column.key];
  if (value.isNull()) return "";
  if (value.isString()) return value.asString();
  return value.isArray() ? joined(value) : base::json_text(value, column.key);
}

}  // namespace

std::string csv_heading() {
  std::vector<std::string> cells;
  std::ranges::transform(kColumns, std::back_inserter(cells), heading);
  return base::csv_row(cells);
}

std::string event_csv(const Event& event) {
  const Json::Value value = event_value(event);
  std::vector<std::string> cells;
  std::ranges::transform(kColumns, std::back_inserter(cells),
                         [&](const Column& column) { return cell(value, column); });
  return base::csv_row(cells);
}

}  // namespace lm::host::events
