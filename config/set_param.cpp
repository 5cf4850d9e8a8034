// Configures an engine: parameters and regions.
#include <algorithm>
#include <cstring>
#include <utility>

#include "base/aligned.h"
#include "base/c_locale.h"
#include "config/host_log.h"
#include "config/param_entry.h"
#include "engine/engine_state.h"
#include "engine/kamble.h"

// Called by storeSensitivity.
static void enableAutoSensitivity(kAMBLE& engine) {
  if (log_File_Debug_s != nullptr) {
    log_File_Debug_s("/Kdbglog/.nera_motion_log/.md.log", 10485760, "enable AUTO sensitivity");
  }
  engine.autoSensitivity = true;
}

namespace {

// Applies one entry. Returns whether it was accepted.
bool apply(kAMBLE& engine, const std::string& key, const std::string& value) {
  const auto* row = lm::findParam<kAMBLE>(key);
  return row != nullptr && lm::applyParam(*row, engine, lm::convertParam(row->conversion, value));
}

// The record of a mask that the engine made, or null.
const lm::Made* recordOf(const std::uint8_t* mask, const std::vector<lm::Made>& masks) {
  const auto found =
      std::find_if(masks.begin(), masks.end(), [mask](const lm::Made& made) { return made.plane == mask; });
  return mask == nullptr || found == masks.end() ? nullptr : &*found;
}

// Makes the mask of the region unless it has one, and draws it. `before`: the masks that earlier calls made;
// one that is too small by now is dropped. When the product of the sizes exceeds 32 bits, the mask is left as
// it is and the frame is refused later.
void rasterise(kAMBLE& engine, polygon& region, const std::vector<lm::Made>& before) {
  const std::int32_t count = lm::wrapMul(engine.szImgX, engine.szImgY);
  // A sized engine may get its sides back.
  const std::size_t bytes = std::max(static_cast<std::size_t>(count), engine.nbr4Idx.size());
  const lm::Made* known = recordOf(region.mask, before);
  if (known != nullptr && known->bytes < bytes) region.mask = nullptr;
  if (region.mask == nullptr) {
    region.mask = new std::uint8_t[bytes]();
    lm::stateOf(engine).regionMasks.push_back({region.mask, bytes});
  } else if (known != nullptr) {
    lm::stateOf(engine).regionMasks.push_back(*known);
  }
  if (std::int64_t{engine.szImgX} * engine.szImgY != count) return;
  cvtPoly2Mask(region.points, region.mask, engine.szImgX, engine.szImgY);
}

// Makes roiMask if it is missing and clears it. Returns false when the allocation fails.
bool clearRoiMask(kAMBLE& engine, std::int32_t count) {
  const lm::Made& made = lm::stateOf(engine).roiMask;
  if (made.isTooSmall(engine.roiMask, lm::countOf(count))) lm::release(engine.roiMask);
  if (!lm::makeRoiMask(engine, count)) return false;
  if (count > 0) std::memset(engine.roiMask, 0, lm::countOf(count));
  return true;
}

// All inclusions precede all exclusions, so an exclusion always wins.
void buildRoiMask(kAMBLE& engine) {
  const std::int32_t width = engine.szImgX;
  const std::int32_t height = engine.szImgY;
  const std::int32_t count = lm::wrapMul(width, height);
  const bool made = clearRoiMask(engine, count);
  const std::vector<lm::Made> before = std::exchange(lm::stateOf(engine).regionMasks, {});
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
  // Kept: masks made by an earlier call are dropped with the old lists, not freed.
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
