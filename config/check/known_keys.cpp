#include "config/check/known_keys.h"

#include <json/json.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <numeric>

#include "config/check/findings.h"
#include "config/document.h"
#include "config/param_table.h"
#include "config/region_rules.h"
#include "config/scalar_keys.h"
#include "config/settings.h"

namespace lm::check {
namespace {

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// The edit distance: characters inserted, deleted or replaced.
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t k = 1; k <= b.size(); ++k) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[k - 1] ? 0 : 1);
      diagonal = row[k];
      row[k] = std::min({replaced, row[k] + 1, row[k - 1] + 1});
    }
  }
  return row.back();
}

std::string hintFor(const std::string& key, const std::vector<std::string>& known) {
  if (std::find(std::begin(handleKeys), std::end(handleKeys), key) != std::end(handleKeys))
    return "only detectors by handle (lightmotion.h) know it";
  const std::string near = nearest(key, known);
  if (!near.empty()) return "did you mean \"" + near + "\"?";
  if (findParam<Settings>(key) != nullptr)
    return "the plug-in reads it from its parameter list only, not from a configuration";
  std::string all = "known keys: ";
  for (const std::string& name : known) all.append(&name == &known.front() ? "" : ", ").append(name);
  return all;
}

}  // namespace

std::vector<std::string> documentKeys(Reader reader) {
  std::vector<std::string> keys;
  for (const auto& key : scalarKeys<FrameSize>) keys.emplace_back(key.name);
  keys.insert(keys.end(), {includedRegions.key, excludedRegions.key, "lines", "adapt", "comment", "$schema"});
  if (reader == Reader::handle) keys.insert(keys.end(), std::begin(handleKeys), std::end(handleKeys));
  return keys;
}

std::string nearest(const std::string& key, const std::vector<std::string>& known) {
  constexpr std::size_t longest = 64;
  if (key.size() > longest) return "";
  std::string best;
  std::size_t least = (key.size() + 1) / 3;  // the largest distance accepted
  for (const std::string& name : known) {
    const std::size_t differs = distance(lowered(key), lowered(name));
    if (differs > least || (differs == least && !best.empty())) continue;
    least = differs;
    best = name;
  }
  return best;
}

void checkKeys(const Json::Value& object, const std::string& path, const std::vector<std::string>& known,
               Findings& findings) {
  for (const std::string& key : object.getMemberNames()) {
    if (std::find(known.begin(), known.end(), key) != known.end()) continue;
    std::string member = path;
    member.append(path.empty() ? "" : ".").append(key);
    findings.addToKey(Severity::warning, member, "unknown key, ignored", hintFor(key, known));
  }
}

}  // namespace lm::check
