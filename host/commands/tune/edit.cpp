#include "host/commands/tune/edit.h"

#include <json/json.h>

#include <algorithm>
#include <functional>

#include "host/detector/document.h"

namespace lm::host::commands::tune {
namespace {

struct Change {
  std::size_t from;
  std::size_t to;
  std::string text;
};

std::size_t offset(std::ptrdiff_t value) { return static_cast<std::size_t>(value); }

}  // namespace

std::string with_members(const std::string& text, const Members& members) {
  const Json::Value root = detector::readDocument(text);
  std::vector<Change> changes;
  std::string added;
  for (const auto& [key, value] : members) {
    const std::string quoted = Json::valueToQuotedString(value.c_str());
    if (const Json::Value* old = root.find(key.data(), key.data() + key.size())) {
      changes.push_back({offset(old->getOffsetStart()), offset(old->getOffsetLimit()), quoted});
    } else {
      added.append(added.empty() ? "" : ",").append("\n  \"").append(key).append("\": ").append(quoted);
    }
  }
  const std::size_t begin = offset(root.getOffsetStart()) + 1;
  if (!added.empty()) changes.push_back({begin, begin, added.append(root.empty() ? "\n" : ",")});
  // From the end, so that earlier positions remain valid.
  std::ranges::sort(changes, std::greater(), &Change::from);
  std::string result = text;
  for (const Change& change : changes) result.replace(change.from, change.to - change.from, change.text);
  return result;
}

}  // namespace lm::host::commands::tune
