#include "lightmotion/detector.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/engine_state.h"
#include "engine/rules.h"
#include "plugin/result_text.h"
#include "simd/cpu_level.h"

namespace {

namespace compact = lm::compact;

// 1 for each pixel that is set.
std::vector<std::uint8_t> maskOf(const lm::check::PixelBits& pixels, const lm::FrameSize& frame) {
  std::vector<std::uint8_t> mask;
  mask.reserve(static_cast<std::size_t>(frame.frmW) * static_cast<std::size_t>(frame.frmH));
  for (std::int32_t y = 0; y < frame.frmH; ++y) {
    for (std::int32_t x = 0; x < frame.frmW; ++x) mask.push_back(pixels.isSet(x, y) ? 1 : 0);
  }
  return mask;
}

void apply(const lm::Settings& from, kAMBLE& to) {
  to.thrMatch = from.thrMatch;
  to.thrHeuris = from.thrHeuris;
  to.thrIllum = from.thrIllum;
  to.minObjW = from.minObjW;
  to.minObjH = from.minObjH;
  if (to.lifeStatic != from.lifeStatic) {
    to.lifeStatic = from.lifeStatic;
    to.lifeStaticFrm = lm::staticLifeFrames(to.lifeStatic, to.frmRate);
  }
  if (to.autoSensitivity && !from.autoSensitivity) {
    to.thrCcPxl2 = to.thrCcPxl;
    to.holdCcPxl = 0;
  }
  to.autoSensitivity = from.autoSensitivity;
}

compact::Extras extrasOf(const lm::HandleConfiguration& configuration) {
  return {.peeled = configuration.peeled,
          .extent = configuration.extent,
          .absorbSeconds = configuration.absorbSeconds,
          .joinGap = configuration.joinGap};
}

std::int32_t toPixel(float fraction, std::int32_t side) {
  return static_cast<std::int32_t>(std::lround(static_cast<double>(fraction) * side));
}

// Of a word of 32 pixels from column `begin` on, those in columns [from, to).
std::uint32_t columns(std::int32_t begin, std::int32_t from, std::int32_t to) {
  std::uint32_t bits = ~std::uint32_t{0};
  if (from > begin) bits &= ~std::uint32_t{0} << (from - begin);
  if (to < begin + 32) bits &= ~std::uint32_t{0} >> (begin + 32 - to);
  return bits;
}

}  // namespace

lightmotion_detector::lightmotion_detector(const Json::Value& document, lm::HandleConfiguration configuration)
    : document_(document), configuration_(std::move(configuration)) {
  reset();
}

compact::Shape lightmotion_detector::shape() const {
  const lm::FrameSize& frame = configuration_.frame;
  return {frame.frmW, frame.frmH, frame.frmChn};
}

std::size_t lightmotion_detector::rowBytes() const { return shape().rowBytes(); }

void lightmotion_detector::reset() noexcept {
  forgetResults();
  frames_ = 0;
  settings_.emplace();
  engine_.emplace(simd::GetCpuInstructionSet(), compact::Scope::detector, configuration_.format.redFirst);
  apply(configuration_.settings, *settings_);
  engine_->setExtras(extrasOf(configuration_));
}

void lightmotion_detector::lost() noexcept {
  forgetResults();
  if (!engine_->started()) reset();
}

void lightmotion_detector::change(Json::Value document, lm::HandleConfiguration configuration) {
  if (engine_->started() && configuration.coverage.watched != configuration_.coverage.watched) {
    const std::vector<std::uint8_t> mask = maskOf(configuration.coverage.watched, configuration.frame);
    engine_->watch(compact::watchedBy(mask.data(), shape()));
  }
  forgetResults();
  document_.swap(document);
  configuration_ = std::move(configuration);
  apply(configuration_.settings, *settings_);
  if (engine_->started()) lm::deriveLimits(*settings_);
  engine_->setExtras(extrasOf(configuration_));
}

void lightmotion_detector::relearn(const compact::Area& area, const std::uint8_t* mask, std::size_t stride) {
  if (engine_->started()) engine_->relearn(area, mask, stride);
}

void lightmotion_detector::forgetResults() noexcept {
  objects_.clear();
  boxes_.clear();
  touched_.clear();
  json_.clear();
}

bool lightmotion_detector::makeRoiMask() {
  const lm::FrameSize& frame = configuration_.frame;
  if (!lm::makeRoiMask(*settings_, frame.frmW * frame.frmH)) return false;
  const std::vector<std::uint8_t> mask = maskOf(configuration_.coverage.watched, frame);
  std::copy(mask.begin(), mask.end(), settings_->roiMask);
  return true;
}

bool lightmotion_detector::process(const std::uint8_t* pixels, std::size_t stride,
                                   std::int64_t milliseconds) {
  forgetResults();
  // The engine takes 0 for unknown; only differences matter to it.
  constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max() - 1;
  settings_->curTimestamp = milliseconds < 0 ? -1 : std::min(milliseconds, last) + 1;
  if (!engine_->started() && !makeRoiMask()) return false;
  if (!engine_->learn(*settings_, pixels, shape(), stride)) return false;
  ++frames_;
  milliseconds_ = milliseconds;
  objects_ = engine_->boxes(*settings_);
  boxes_.reserve(objects_.size());
  for (const boxRect& object : objects_) addBox(object);
  // The list of regions has moved while it grew.
  const std::int32_t* regions = touched_.data();
  for (lightmotion_box& box : boxes_) {
    box.regions = regions;
    regions += box.region_count;
  }
  return true;
}

void lightmotion_detector::addBox(const boxRect& object) {
  const lm::FrameSize& frame = configuration_.frame;
  lightmotion_box box{};
  box.x = toPixel(object.x, frame.frmW);
  box.y = toPixel(object.y, frame.frmH);
  box.width = std::min(toPixel(object.width, frame.frmW), frame.frmW - box.x);
  box.height = std::min(toPixel(object.height, frame.frmH), frame.frmH - box.y);
  box.rel_x = static_cast<float>(box.x) / static_cast<float>(frame.frmW);
  box.rel_y = static_cast<float>(box.y) / static_cast<float>(frame.frmH);
  box.rel_width = static_cast<float>(box.width) / static_cast<float>(frame.frmW);
  box.rel_height = static_cast<float>(box.height) / static_cast<float>(frame.frmH);
  const std::vector<lm::check::PixelBits>& regions = configuration_.coverage.regions;
  const std::size_t before = touched_.size();
  if (regions.empty()) touched_.push_back(0);
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (touches(regions[i], box)) touched_.push_back(static_cast<std::int32_t>(i));
  }
  box.region_count = static_cast<std::int32_t>(touched_.size() - before);
  boxes_.push_back(box);
}

bool lightmotion_detector::touches(const lm::check::PixelBits& region, const lightmotion_box& box) const {
  for (std::int32_t y = box.y; y < box.y + box.height; ++y) {
    const std::uint32_t* foreground = engine_->foreground(y);
    const std::uint32_t* inside = region.row(y);
    for (std::int32_t word = box.x / 32; word * 32 < box.x + box.width; ++word) {
      const std::uint32_t both = foreground[word] & inside[word];
      if ((both & columns(word * 32, box.x, box.x + box.width)) != 0) return true;
    }
  }
  return false;
}

const std::string& lightmotion_detector::json() {
  if (json_.empty() && !objects_.empty()) {
    json_ = lm::resultText(objects_, std::to_string(milliseconds_).c_str());
  }
  return json_;
}

lightmotion_info lightmotion_detector::info() const {
  std::size_t bytes = engine_->bytes() + configuration_.coverage.watched.bytes();
  for (const lm::check::PixelBits& region : configuration_.coverage.regions) bytes += region.bytes();
  return {.struct_size = sizeof(lightmotion_info),
          .width = configuration_.frame.frmW,
          .height = configuration_.frame.frmH,
          .format = static_cast<std::int32_t>(configuration_.format.format),
          .bytes_per_pixel = configuration_.frame.frmChn,
          .region_count = static_cast<std::int32_t>(configuration_.regionNames.size()),
          .watched = static_cast<float>(configuration_.coverage.share),
          .frames = frames_,
          .frame_rate = settings_->frmRate,
          .memory = bytes};
}
