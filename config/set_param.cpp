// The door through which the engine receives its configuration.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "config/param_table.h"
#include "engine/aligned.h"
#include "engine/c_locale.h"
#include "plugin/host_log.h"

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

// Key and value of the entry being read.
//
// Kept: both outlive the entry. One that holds only a key takes the value of the entry before it, and an
// empty one repeats the entry before it.
class EntryScanner {
 public:
  void scan(const std::string& entry) {
    std::string_view rest(entry.c_str());  // an entry ends at its first NUL
    if (takeToken(rest, key)) takeToken(rest, value);
  }

  std::string key;
  std::string value;

 private:
  static bool takeToken(std::string_view& rest, std::string& token) {
    const std::size_t start = std::min(rest.find_first_not_of(whiteSpace), rest.size());
    rest.remove_prefix(start);
    if (rest.empty()) return false;
    const std::size_t length = std::min(rest.find_first_of(whiteSpace), rest.size());
    token = rest.substr(0, length);
    rest.remove_prefix(length);
    return true;
  }
};

double convert(lm::Conversion conversion, const std::string& value) {
  if (conversion == lm::Conversion::integer) return std::stoi(value);
  return static_cast<double>(std::stof(value));
}

// Applies one entry; whether it was accepted.
bool apply(kAMBLE& engine, const std::string& key, const std::string& value) {
  const auto* row = std::find_if(std::begin(lm::paramTable), std::end(lm::paramTable),
                                 [&](const auto& r) { return r.key == key; });
  if (row == std::end(lm::paramTable)) return false;
  const double number = convert(row->conversion, value);
  if (row->accepts(number)) {
    row->store(engine, number);
    return true;
  }
  if (row->fallBack != nullptr) row->fallBack(engine);
  return false;
}

// Makes the region's mask. Sizes whose product does not fit 32 bits have no mask that could hold them: it
// stays as it was made, and the frame is refused later.
void rasterise(polygon& region, std::int32_t width, std::int32_t height) {
  const std::int32_t count = lm::wrapMul(width, height);
  if (region.mask == nullptr) region.mask = new std::uint8_t[static_cast<std::size_t>(count)]();
  if (std::int64_t{width} * height == count) cvtPoly2Mask(region.points, region.mask, width, height);
}

// Makes roiMask if it is missing and clears it. False when memory is lacking.
bool clearRoiMask(kAMBLE& engine, std::int32_t count) {
  const bool tooSmall =
      engine.roiMaskMade.buffer == engine.roiMask && engine.roiMaskMade.bytes < lm::countOf(count);
  if (tooSmall) lm::release(engine.roiMask);
  if (engine.roiMask == nullptr) {
    if (!lm::makeOnce(engine.roiMask, count)) return false;
    engine.roiMaskMade = {engine.roiMask, lm::countOf(count)};
  }
  if (count > 0) std::memset(engine.roiMask, 0, lm::countOf(count));
  return true;
}

// All inclusions come before any exclusion, so that an exclusion always wins.
void buildRoiMask(kAMBLE& engine) {
  const std::int32_t width = engine.szImgX;
  const std::int32_t height = engine.szImgY;
  const std::int32_t count = lm::wrapMul(width, height);
  const bool made = clearRoiMask(engine, count);
  engine.regionMaskBytes = lm::countOf(count);
  for (polygon& region : engine.roiInclude) {
    rasterise(region, width, height);
    if (made) unionMask(engine.roiMask, region.mask, width, height);
  }
  for (polygon& region : engine.roiExclude) {
    rasterise(region, width, height);
    if (made) unionNegMask(engine.roiMask, region.mask, width, height);
  }
}

}  // namespace

void lm::storeSensitivity(kAMBLE& engine, double value) {
  if (value == autoSensitivityLevel) {
    if (log_File_Debug_s != nullptr) {
      log_File_Debug_s("/Kdbglog/.nera_motion_log/.md.log", 10485760, "enable AUTO sensitivity");
    }
    engine.autoSensitivity = true;
  }
  storeThresholds(engine, *findLevel(sensitivityLevels, value));
}

std::vector<bool> kAMBLE::setParam(std::vector<std::string>& paramList, std::vector<polygon>& include,
                                   std::vector<polygon>& exclude) {
  std::vector<bool> accepted(paramList.size(), false);
  // Kept: masks that an earlier call made are dropped with the old lists, not freed.
  roiInclude = include;
  roiExclude = exclude;

  const lm::CLocaleScope plainNumbers;
  EntryScanner entry;
  for (std::size_t i = 0; i < paramList.size(); ++i) {
    entry.scan(paramList[i]);
    accepted[i] = apply(*this, entry.key, entry.value);
  }
  buildRoiMask(*this);
  return accepted;
}
