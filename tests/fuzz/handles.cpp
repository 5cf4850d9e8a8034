// Functions of lightmotion.h in any order, on pairs of detectors that have to give the same.
#include <memory>
#include <optional>
#include <vector>

#include "lightmotion/lightmotion.h"
#include "tests/fuzz/picture.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::Choices;

struct Destroyed {
  void operator()(lightmotion_detector* detector) const { lightmotion_destroy(detector); }
};

constexpr std::array<const char*, 23> members = {
    R"("sensitivity": 5)",
    R"("sensitivity": -1)",
    R"("sensitivity": null)",
    R"("lcAdap": 1)",
    R"("minBoxW": 0.01, "minBoxH": 0.01)",
    R"("minBoxW": null, "minBoxH": null)",
    R"("lifeStatic": 0)",
    R"("absorb_seconds": 0.1)",
    R"("absorb_seconds": "forever")",
    R"("absorb_seconds": null)",
    R"("extent": "full")",
    R"("extent": "object")",
    R"("extent": null)",
    R"("join_gap": 0)",
    R"("join_gap": 0.5)",
    R"("peel": 0)",
    R"("peel": 2)",
    R"("roi": null)",
    R"("roi": [{"points": [{"x": 0.2, "y": 0.1}, {"x": 0.9, "y": 0.2}, {"x": 0.5, "y": 1.4}]}])",
    R"("roi": [{"name": "a", "points": [{"x": -1, "y": -1}, {"x": 0.5, "y": -1}, {"x": 0.5, "y": 2}, {"x": -1, "y": 2}]},
               {"name": "b", "points": [{"x": 0.4, "y": 0.5}, {"x": 2, "y": 0.5}, {"x": 2, "y": 2}, {"x": 0.4, "y": 2}]}])",
    R"("ror": [{"points": [{"x": 0.3, "y": 0.3}, {"x": 0.6, "y": 0.3}, {"x": 0.6, "y": 0.6}]}])",
    R"("ror": null)",
    R"("roi": [])",
};

// A pair of detectors of the same size and format.
class Pair {
 public:
  explicit Pair(Choices& choices)
      : width_(choices.between(1, 100)), height_(choices.between(1, 40)), format_(choices.between(1, 7)) {
    for (auto& detector : pair_) {
      detector.reset(lightmotion_create_for(nullptr, width_, height_, format_, nullptr, 0));
      fuzz::require(detector != nullptr, "no detector");
    }
    lightmotion_info info{};
    info.struct_size = sizeof info;
    fuzz::require(lightmotion_get_info(pair_[0].get(), &info) == LIGHTMOTION_OK, "no info");
    rowBytes_ = static_cast<std::size_t>(width_) * static_cast<std::size_t>(info.bytes_per_pixel);
    picture_.emplace(width_, height_, info.bytes_per_pixel);
  }

  void process(Choices& choices) {
    const std::size_t stride = rowBytes_ + static_cast<std::size_t>(choices.below(40));
    picture_->change(choices.between(0, 7), choices);
    // Exactly as much as may be read.
    std::vector<std::uint8_t> frame;
    frame.reserve(stride * static_cast<std::size_t>(height_ - 1) + rowBytes_);
    for (std::size_t y = 0; y < static_cast<std::size_t>(height_); ++y) {
      const auto row = picture_->pixels().begin() + static_cast<std::ptrdiff_t>(y * rowBytes_);
      if (y > 0) frame.resize(y * stride, static_cast<std::uint8_t>(frames_));
      frame.insert(frame.end(), row, row + static_cast<std::ptrdiff_t>(rowBytes_));
    }
    const int step = choices.byte();
    const std::int64_t time = step < 240 ? time_ += step : choices.number<std::int64_t>();
    if (time < 0) return;  // the wall clock differs between the two
    const lightmotion_box* boxes[2] = {};
    int counts[2] = {};
    for (std::size_t i = 0; i < 2; ++i) {
      counts[i] = lightmotion_process(pair_[i].get(), frame.data(), stride, time, &boxes[i]);
    }
    fuzz::require(counts[0] >= 0 && counts[0] == counts[1], "different numbers of boxes");
    for (int k = 0; k < counts[0]; ++k) requireSame(boxes[0][k], boxes[1][k]);
    fuzz::require(
        std::string(lightmotion_json(pair_[0].get(), nullptr)) == lightmotion_json(pair_[1].get(), nullptr),
        "different texts");
    ++frames_;
    requirePictures();
  }

  void change(Choices& choices) {
    const std::string changes = std::string("{") + choices.of(members) + "}";
    int outcomes[2] = {};
    for (std::size_t i = 0; i < 2; ++i) {
      outcomes[i] = lightmotion_change(pair_[i].get(), changes.c_str(), nullptr, 0);
    }
    fuzz::require(outcomes[0] == outcomes[1], "different outcomes");
    fuzz::require(outcomes[0] == LIGHTMOTION_OK || outcomes[0] == LIGHTMOTION_ERROR_CONFIGURATION,
                  "an undocumented outcome");
  }

  // Any rectangle, of which some do not lie within the frame.
  void relearn(Choices& choices) {
    const int x = choices.between(-2, width_);
    const int y = choices.between(-2, height_);
    const int width = choices.between(0, width_ + 1);
    const int height = choices.between(0, height_ + 1);
    const bool inside =
        x >= 0 && y >= 0 && width > 0 && height > 0 && x + width <= width_ && y + height <= height_;
    std::vector<std::uint8_t> mask;
    if (inside && choices.flag()) {
      mask.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
      for (std::uint8_t& byte : mask) byte = choices.byte() % 3;
    }
    for (auto& detector : pair_) {
      const int outcome =
          lightmotion_relearn(detector.get(), x, y, width, height, mask.empty() ? nullptr : mask.data(), 0);
      fuzz::require(outcome == (inside ? LIGHTMOTION_OK : LIGHTMOTION_ERROR_ARGUMENT),
                    "an undocumented outcome");
    }
  }

  void reset() {
    for (auto& detector : pair_) lightmotion_reset(detector.get());
    frames_ = 0;
  }

 private:
  void requireSame(const lightmotion_box& a, const lightmotion_box& b) const {
    fuzz::require(a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height &&
                      a.region_count == b.region_count,
                  "different boxes");
    fuzz::require(a.x >= 0 && a.y >= 0 && a.width > 0 && a.height > 0 && a.x + a.width <= width_ &&
                      a.y + a.height <= height_,
                  "a box beyond the frame");
    fuzz::require(a.region_count > 0, "a box in no region");
    for (int i = 0; i < a.region_count; ++i) {
      fuzz::require(lightmotion_region_name(pair_[0].get(), a.regions[i]) != nullptr,
                    "a region without a name");
    }
  }

  void requirePictures() const {
    std::vector<std::uint8_t> pictures[2];
    for (std::size_t i = 0; i < 2; ++i) {
      pictures[i].resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
      fuzz::require(lightmotion_foreground(pair_[i].get(), pictures[i].data(), 0) == LIGHTMOTION_OK,
                    "no mask");
    }
    fuzz::require(pictures[0] == pictures[1], "different masks");
    for (std::size_t i = 0; i < 2; ++i) {
      pictures[i].resize(rowBytes_ * static_cast<std::size_t>(height_));
      fuzz::require(lightmotion_background(pair_[i].get(), pictures[i].data(), 0) == LIGHTMOTION_OK,
                    "no background");
    }
    fuzz::require(pictures[0] == pictures[1], "different backgrounds");
  }

  int width_, height_, format_;
  std::size_t rowBytes_ = 0;
  std::unique_ptr<lightmotion_detector, Destroyed> pair_[2];
  std::optional<fuzz::Picture> picture_;
  std::int64_t time_ = 0;
  int frames_ = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  std::vector<Pair> pairs;
  pairs.emplace_back(choices);
  for (int calls = 0; calls < 60 && !choices.over(); ++calls) {
    const std::size_t place = choices.byte() % pairs.size();
    switch (choices.below(9)) {
      case 0:
        pairs[place].reset();
        break;
      case 1:
      case 2:
        pairs[place].change(choices);
        break;
      case 3:
        if (pairs.size() < 3) {
          pairs.emplace_back(choices);
        } else {
          pairs.erase(pairs.begin() + static_cast<std::ptrdiff_t>(place));
        }
        break;
      case 8:
        pairs[place].relearn(choices);
        break;
      default:
        pairs[place].process(choices);
    }
  }
  return 0;
}
