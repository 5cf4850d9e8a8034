// "extent": "object" against a plain model of it, which starts from the mask of the foreground.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/lightmotion/fixture.h"

namespace lm::test {
namespace {

constexpr int width = 160;
constexpr int height = 120;
constexpr compact::Shape shape{width, height, 1};

using Pixel = std::pair<int, int>;  // row, column
// Numbers of the pixels' components, which count from 1; 0 before that, and -1 where nothing is set.
using Map = std::vector<int>;

bool inside(int y, int x) { return y >= 0 && x >= 0 && y < height && x < width; }

std::size_t at(int y, int x) { return static_cast<std::size_t>(y * width + x); }

Map peeled(Map map, int layers) {
  for (; layers > 0; --layers) {
    Map less = map;
    for (int i = 0; i < width * height; ++i) {
      const int y = i / width, x = i % width;
      for (const auto& [ny, nx] : {Pixel{y, x - 1}, {y, x + 1}, {y - 1, x}, {y + 1, x}}) {
        if (inside(ny, nx) && map[at(ny, nx)] < 0) less[at(y, x)] = -1;
      }
    }
    map = less;
  }
  return map;
}

// Each a list of pixels.
std::vector<std::vector<Pixel>> components(Map& map) {
  std::vector<std::vector<Pixel>> all;
  for (int i = 0; i < width * height; ++i) {
    if (map[static_cast<std::size_t>(i)] != 0) continue;
    std::vector<Pixel> open{{i / width, i % width}};
    all.emplace_back();
    while (!open.empty()) {
      const auto [y, x] = open.back();
      open.pop_back();
      if (!inside(y, x) || map[at(y, x)] != 0) continue;
      map[at(y, x)] = static_cast<int>(all.size());
      all.back().emplace_back(y, x);
      open.insert(open.end(), {{y, x - 1}, {y, x + 1}, {y - 1, x}, {y + 1, x}});
    }
  }
  return all;
}

struct Thing {
  int left = width, top = height, right = 0, bottom = 0;
  bool strong = false;
  double covered = 0;

  void add(const Thing& other) {
    left = std::min(left, other.left);
    top = std::min(top, other.top);
    right = std::max(right, other.right);
    bottom = std::max(bottom, other.bottom);
    strong = strong || other.strong;
    covered += other.covered;
  }
  double wide() const { return right - left; }
  double high() const { return bottom - top; }
};

// In the order of their cores.
std::vector<Thing> pieces(const std::vector<std::uint8_t>& foreground, int layers) {
  Map map;
  for (const std::uint8_t pixel : foreground) map.push_back(pixel != 0 ? 0 : -1);
  Map cores = peeled(map, layers);
  const auto wholes = components(map);
  std::vector<Thing> result;
  std::map<int, std::size_t> known;
  for (const auto& core : components(cores)) {
    const int whole = map[at(core.front().first, core.front().second)];
    if (known.emplace(whole, result.size()).second) {
      result.emplace_back();
      for (const auto& [y, x] : wholes[static_cast<std::size_t>(whole) - 1]) {
        result.back().add({x, y, x + 1, y + 1});
      }
    }
    Thing& piece = result[known.at(whole)];
    if (core.size() >= 25) piece.strong = true;
    piece.covered = piece.wide() * piece.high();
  }
  return result;
}

bool isNear(const Thing& a, const Thing& b, bool small) {
  const double x = std::max(a.left, b.left) - std::min(a.right, b.right);
  const double y = std::max(a.top, b.top) - std::min(a.bottom, b.bottom);
  const double gap = std::max({x, y, 0.0});
  if (gap <= 2) return true;
  for (const Thing& thing : {a, b}) {
    if (!thing.strong && gap > std::max(thing.wide(), thing.high())) return false;
  }
  const double narrow = std::min(a.wide(), b.wide());
  const double low = std::min(a.high(), b.high());
  if (-x >= narrow / 2) {
    const Thing& wider = a.wide() >= b.wide() ? a : b;
    const bool lying = wider.wide() > 1.5 * wider.high();
    return gap <= (lying ? narrow / 2 : 2 * wider.wide()) && gap <= width / 8.0;
  }
  return small && -y >= low / 2 && gap <= narrow && gap <= width / 32.0;
}

bool related(const Thing& a, const Thing& b, double fill) {
  const double ratio = a.wide() * a.high() / (b.wide() * b.high());
  const bool small = !a.strong || !b.strong || ratio <= 0.25 || ratio >= 4;
  Thing both = a;
  both.add(b);
  return isNear(a, b, small) && both.covered >= both.wide() * both.high() * fill * (small ? 1 : 2);
}

// Merges the first two that are related, again and again.
void merge(std::vector<Thing>& things, double fill) {
  for (std::size_t i = 0; i < things.size(); ++i) {
    for (std::size_t j = i + 1; j < things.size(); ++j) {
      if (!related(things[i], things[j], fill)) continue;
      things[i].add(things[j]);
      things.erase(things.begin() + static_cast<std::ptrdiff_t>(j));
      return merge(things, fill);
    }
  }
}

std::string expected(const std::vector<std::uint8_t>& foreground, int layers, double fill) {
  std::vector<Thing> things, specks, left;
  for (const Thing& piece : pieces(foreground, layers)) (piece.strong ? things : specks).push_back(piece);
  merge(things, fill);
  for (bool any = true; any; merge(things, fill)) {
    any = false;
    left.clear();
    for (const Thing& speck : specks) {
      const auto owner = std::find_if(things.begin(), things.end(),
                                      [&](const Thing& thing) { return related(thing, speck, fill); });
      if (owner == things.end()) {
        left.push_back(speck);
      } else {
        owner->add(speck);
        any = true;
      }
    }
    specks = left;
  }
  std::string text;
  for (const Thing& thing : things) {
    if (thing.wide() < 8 && thing.high() < 12) continue;
    text += std::to_string(thing.left) + ' ' + std::to_string(thing.top) + ' ' +
            std::to_string(static_cast<int>(thing.wide())) + ' ' +
            std::to_string(static_cast<int>(thing.high())) + " in 0; ";
  }
  return text;
}

// Numbers from 0 to `end`, the same in every run.
class Numbers {
 public:
  explicit Numbers(std::uint32_t seed) : state_(seed) {}
  int below(int end) {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<int>((state_ >> 8) % static_cast<std::uint32_t>(end));
  }

 private:
  std::uint32_t state_;
};

// Blocks of all sizes, also across the border.
std::vector<Block> anyBlocks(Numbers& numbers) {
  std::vector<Block> blocks;
  for (int count = 3 + numbers.below(30); count > 0; --count) {
    const int most = numbers.below(4) == 0 ? 40 : 12;
    const int x = numbers.below(width);
    const int y = numbers.below(height);
    blocks.push_back({x, y, std::min(1 + numbers.below(most), width - x),
                      std::min(1 + numbers.below(most), height - y), 200});
  }
  return blocks;
}

// Minimum box: 8 x 12 pixels.
TEST(ObjectExtent, IsWhatAPlainModelGives) {
  Numbers numbers(1);
  std::size_t boxes = 0, joined = 0;
  for (int round = 0; round < 200; ++round) {
    const int layers = round % 4;
    const int sensitivity = 2 + round / 4 % 4;
    const std::string rest = ", \"peel\": " + std::to_string(layers) +
                             ", \"sensitivity\": " + std::to_string(sensitivity) +
                             ", \"minBoxW\": 0.05, \"minBoxH\": 0.1";
    const Detector detector = made(documentOf(shape, "\"extent\": \"object\"" + rest));
    feed(detector, picture(shape, 80, {}), 40);
    const std::string text = feed(detector, picture(shape, 80, anyBlocks(numbers)), 80);
    const std::vector<std::uint8_t> foreground = foregroundOf(detector);
    const std::string wanted = expected(foreground, layers, sensitivity <= 3 ? 0.15 : 0.3);
    ASSERT_EQ(text.substr(0, text.find('{')), wanted) << "round " << round;
    const auto count = static_cast<std::size_t>(std::count(wanted.begin(), wanted.end(), ';'));
    boxes += count;
    if (count < pieces(foreground, layers).size()) ++joined;
  }
  EXPECT_GT(boxes, 400U);
  EXPECT_GT(joined, 100U);
}

// Without a margin, and joined by size: the mast of 2 x 20 pixels, with nothing left of it after peeling, is
// a part only where it touches.
TEST(ObjectExtent, EnclosesPiecesThatHaveACore) {
  const auto boxesOf = [](const std::string& members, const std::vector<Block>& blocks) {
    const Detector detector = made(documentOf(shape, members));
    feed(detector, picture(shape, 80, {}), 40);
    const std::string text = feed(detector, picture(shape, 80, blocks), 80);
    return text.substr(0, text.find('{'));
  };
  const Block body{60, 60, 20, 30, 200};
  const Block head{65, 44, 9, 9, 200};  // 3 x 3 pixels after three layers
  const Block mast{69, 20, 2, 20, 200};
  EXPECT_EQ(boxesOf("\"extent\": \"object\"", {body, head, mast}), "60 44 20 46 in 0; ");
  EXPECT_EQ(boxesOf("\"extent\": \"full\"", {body, head, mast}), "59 59 22 32 in 0; ");
  EXPECT_EQ(boxesOf("\"extent\": \"object\"", {body, {69, 40, 2, 20, 200}}), "60 40 20 50 in 0; ");
  EXPECT_EQ(boxesOf("\"extent\": \"object\"", {head}), "") << "no core of 25 pixels";
}

}  // namespace
}  // namespace lm::test
