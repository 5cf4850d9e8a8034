// The door through which the engine receives its configuration.
#include <algorithm>
#include <cstring>
#include <utility>

#include "config/param_entry.h"
#include "engine/aligned.h"
#include "engine/c_locale.h"
#include "engine/kamble.h"
#include "plugin/host_log.h"

// Called by the table of keys.
static void enableAutoSensitivity(kAMBLE& engine) {
  if (log_File_Debug_s != nullptr) {
    log_File_Debug_s("/Kdbglog/.nera_motion_log/.md.log", 10485760, "enable AUTO sensitivity");
  }
  engine.autoSensitivity = true;
}

namespace {

// Applies one entry; whether it was accepted.
bool apply(kAMBLE& engine, const std::string& key, const std::string& value) {
  const auto* row = lm::findParam<kAMBLE>(key);
  return row != nullptr && lm::applyParam(*row, engine, lm::convertParam(row->conversion, value));
}

// The record of a mask that the engine made, or null.
const kAMBLE::Made* recordOf(const std::uint8_t* mask, const std::vector<kAMBLE::Made>& masks) {
  const auto found = std::find_if(masks.begin(), masks.end(),
                                  [mask](const kAMBLE::Made& made) { return made.buffer == mask; });
  return mask == nullptr || found == masks.end() ? nullptr : &*found;
}

// Makes the region's mask unless it brings one along, and draws it. `before`: the masks that earlier calls
// made; one that is too small by now is dropped. Sizes whose product does not fit 32 bits have no mask that
// could hold them: it stays as it was made, and the frame is refused later.
void rasterise(kAMBLE& engine, polygon& region, const std::vector<kAMBLE::Made>& before) {
  const std::int32_t count = lm::wrapMul(engine.szImgX, engine.szImgY);
  // An engine that is sized already may get its sides back.
  const std::size_t bytes = std::max(static_cast<std::size_t>(count), engine.nbr4Idx.size());
  const kAMBLE::Made* known = recordOf(region.mask, before);
  if (known != nullptr && known->bytes < bytes) region.mask = nullptr;
  if (region.mask == nullptr) {
    region.mask = new std::uint8_t[bytes]();
    engine.regionMasksMade.push_back({region.mask, bytes});
  } else if (known != nullptr) {
    engine.regionMasksMade.push_back(*known);
  }
  if (std::int64_t{engine.szImgX} * engine.szImgY != count) return;
  cvtPoly2Mask(region.points, region.mask, engine.szImgX, engine.szImgY);
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
  const std::vector<kAMBLE::Made> before = std::move(engine.regionMasksMade);
  engine.regionMasksMade.clear();
  for (polygon& region : engine.roiInclude) {
    rasterise(engine, region, before);
    if (made) unionMask(engine.roiMask, region.mask, width, height);
  }
  for (polygon& region : engine.roiExclude) {
    rasterise(engine, region, before);
    if (made) unionNegMask(engine.roiMask, region.mask, width, height);
  }
}

}  // namespace

std::vector<bool> kAMBLE::setParam(std::vector<std::string>& paramList, std::vector<polygon>& include,
                                   std::vector<polygon>& exclude) {
  std::vector<bool> accepted(paramList.size(), false);
  // Kept: masks that an earlier call made are dropped with the old lists, not freed.
  roiInclude = include;
  roiExclude = exclude;

  const lm::CLocaleScope plainNumbers;
  lm::EntryScanner entry;
  for (std::size_t i = 0; i < paramList.size(); ++i) {
    entry.scan(paramList[i]);
    accepted[i] = apply(*this, entry.key, entry.value);
  }
  buildRoiMask(*this);
  return accepted;
}
