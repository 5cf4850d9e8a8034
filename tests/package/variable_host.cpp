// A host that is linked against the library and changes its variables: the library reads them at every use.
#include <cstdio>

#include "engine/kamble.h"

namespace {

// Life of a foreground pixel whose grey value rose by 80 in the second frame.
float lifeAfterRiseBy80() {
  kAMBLE engine;
  std::vector<std::string> settings = {"frmW 16", "frmH 16", "frmChn 1"};
  std::vector<polygon> whole = {{"all", {{-1, -1}, {20, -1}, {20, 20}, {-1, 20}}, nullptr}};
  std::vector<polygon> none;
  engine.setParam(settings, whole, none);
  const std::vector<std::uint8_t> before(256, 100);
  const std::vector<std::uint8_t> after(256, 180);
  engine.learnBg_ncv(before.data(), 16, 16, 1);
  engine.learnBg_ncv(after.data(), 16, 16, 1);
  return engine.fgLife[100];
}

struct Row {
  int x2, x3;
  float life;
};

}  // namespace

int main() {
  if (THRESH_SAME_PIXEL_x2 != 20 || THRESH_SAME_PIXEL_x3 != 30 || g_seed != 0) {
    std::fputs("failed: other initial values\n", stderr);
    return 1;
  }
  // A difference above both bands adds nothing, one within x3 adds 0.2, one within x2 adds 0.5.
  for (const auto& [x2, x3, life] : {Row{20, 30, 0.0F}, {80, 30, 0.5F}, {79, 80, 0.2F}, {20, 79, 0.0F}}) {
    THRESH_SAME_PIXEL_x2 = x2;
    THRESH_SAME_PIXEL_x3 = x3;
    const float found = lifeAfterRiseBy80();
    if (found == life) continue;
    std::fprintf(stderr, "failed: life %g instead of %g with %d and %d\n", double{found}, double{life}, x2,
                 x3);
    return 1;
  }
  return 0;
}
