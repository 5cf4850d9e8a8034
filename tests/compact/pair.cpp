#include "tests/compact/pair.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/aligned.h"
#include "base/integers.h"
#include "simd/cpu_level.h"
#include "simd/versions.h"

namespace {

std::string differs(const std::string& what, double open, double compact) {
  if (open == compact) return "";
  return what + ": open " + std::to_string(open) + ", compact " + std::to_string(compact);
}

bool isSame(const boxRect& a, const boxRect& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height && a.names == b.names;
}

// Both draw the neighbours of border pixels from rand(): how the generator stands after a step.
template <typename Step>
int drawnBy(const Step& step) {
  std::srand(7);
  step();
  return std::rand();
}

}  // namespace

std::vector<int> levels() {
  std::vector<int> known;
  for (const int level : {simd::level::sse2, simd::level::sse41, simd::level::avx2}) {
    if (level > GetCpuInstructionSet()) continue;
    const bool repeats =
        !known.empty() && &lm::compact::kernelsFor(known.back()) == &lm::compact::kernelsFor(level);
    if (!repeats) known.push_back(level);
  }
  return known;
}

Pair::Pair(const lm::compact::Shape& shape, std::vector<std::string> entries, std::vector<polygon> include,
           std::vector<polygon> exclude, int level)
    : Pair(shape, std::move(entries), std::move(include), std::move(exclude),
           lm::compact::kernelsFor(level)) {}

Pair::Pair(const lm::compact::Shape& shape, std::vector<std::string> entries, std::vector<polygon> include,
           std::vector<polygon> exclude, const lm::compact::Kernels& kernels)
    : shape_(shape), compact_(kernels), frame_(static_cast<std::size_t>(shape.height) * shape.rowBytes()) {
  std::vector<polygon> include2 = include;
  std::vector<polygon> exclude2 = exclude;
  open_.setParam(entries, include, exclude);
  settings_.setParam(entries, include2, exclude2);
  suits_ = lm::compact::Engine::suits(settings_, shape);
}

std::string Pair::feed(const std::vector<std::uint8_t>& pixels, const std::string& timestamp) {
  const std::uint8_t* const frame = placed(pixels);
  open_.setTimestamp(timestamp.c_str());
  settings_.setTimestamp(timestamp.c_str());
  bool learned = false;
  bool learned2 = false;
  const int drawn =
      drawnBy([&] { learned = open_.learnBg_ncv(frame, shape_.width, shape_.height, shape_.channels); });
  const int drawn2 = drawnBy([&] { learned2 = compact_.learn(settings_, frame, shape_); });
  if (drawn != drawn2) return "rand() was drawn from a different number of times";
  if (learned != learned2) return differs("learned", learned ? 1 : 0, learned2 ? 1 : 0);
  frames_ += learned ? 1 : 0;

  boxes_ = boxesOfOpen();
  const std::vector<boxRect> boxes = compact_.boxes(settings_);

  const std::string difference = compareMasks();
  if (!difference.empty()) return difference;
  if (!std::equal(boxes.begin(), boxes.end(), boxes_.begin(), boxes_.end(), isSame)) {
    return "boxes: open " + std::to_string(boxes_.size()) + ", compact " + std::to_string(boxes.size());
  }
  return compareState();
}

const std::uint8_t* Pair::placed(const std::vector<std::uint8_t>& pixels) {
  if (pixels.empty()) return nullptr;
  const bool back = frames_ % 2 == 0;
  const std::size_t beyond = pixels.size() % 32;
  frame_.place(pixels.size(), back && beyond != 0 ? 32 - beyond : 0,
               back ? GuardedBuffer::Against::back : GuardedBuffer::Against::front);
  std::copy(pixels.begin(), pixels.end(), frame_.begin());
  return frame_.begin();
}

std::vector<boxRect> Pair::boxesOfOpen() {
  if (open_.fgMask == nullptr) return {};
  std::uint8_t* mask = nullptr;
  lm::makeOnce(mask, shape_.width * shape_.height);
  std::copy_n(open_.fgMask, lm::countOf(open_.numPixel), mask);
  std::vector<boxRect> boxes = open_.genFgObj_ncv(mask);
  lm::release(mask);
  return boxes;
}

std::string Pair::compareMasks() const {
  if (frames_ < 2) return "";
  for (int y = 0; y < shape_.height; ++y) {
    for (int x = 0; x < shape_.width; ++x) {
      const bool open = open_.fgMask[y * shape_.width + x] != 0;
      const bool compact = compact_.isForeground(x, y);
      if (open != compact) {
        return "foreground at " + std::to_string(x) + ", " + std::to_string(y) + ": open " +
               std::to_string(open);
      }
    }
  }
  return "";
}

std::string Pair::compareState() const {
  for (const auto& [what, open, compact] :
       {std::tuple<const char*, double, double>{"illumRatio", open_.illumRatio, settings_.illumRatio},
        {"diffChn", open_.diffChn, settings_.diffChn},
        {"frmRate", open_.frmRate, settings_.frmRate},
        {"lifeStaticFrm", open_.lifeStaticFrm, settings_.lifeStaticFrm},
        {"lockSegStart", open_.lockSegStart, settings_.lockSegStart},
        {"lockSegEnd", open_.lockSegEnd, settings_.lockSegEnd},
        {"thrCcPxl2", open_.thrCcPxl2, settings_.thrCcPxl2},
        {"holdCcPxl", open_.holdCcPxl, settings_.holdCcPxl},
        {"thrConnect", open_.thrConnect, settings_.thrConnect},
        {"minObjWPxl", open_.minObjWPxl, settings_.minObjWPxl},
        {"minObjHPxl", open_.minObjHPxl, settings_.minObjHPxl},
        {"frmCount", open_.frmCount, settings_.frmCount}}) {
    const std::string difference = differs(what, open, compact);
    if (!difference.empty()) return difference;
  }
  return "";
}
