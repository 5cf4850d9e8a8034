// Every level of the two level settings, every other key, and refused settings.
#include "tests/system/sequence.h"

namespace {

// Lighting changes of every strength and an object with nearly the brightness of the background.
scene::Scene graded(int channels) {
  return {.width = 33,
          .height = 31,
          .channels = channels,
          .seed = 7,
          .noise = 6,
          .lights = {{{0, 0, 8, 31}, 8, 30, 4},
                     {{8, 0, 8, 31}, 8, 30, 9},
                     {{16, 0, 8, 31}, 8, 30, 14},
                     {{24, 0, 9, 31}, 8, 30, 19},
                     {{0, 0, 33, 31}, 40, 60, 11, 3}},
          .things = {{.area = {2, 12, 9, 9}, .from = 4, .shade = 85, .dx = 1, .moves = 20},
                     {.area = {20, 3, 10, 11}, .from = 12, .until = 45, .shade = 150}}};
}

Sequence withEntries(const std::string& name, std::vector<std::string> entries, int channels,
                     ConfiguredBy by) {
  return {.name = name,
          .width = 33,
          .height = 31,
          .frames = 70,
          .frame = framesOf(graded(channels), 200),
          .entries = std::move(entries),
          .configuredBy = by};
}

std::string named(const std::string& key, int value) {
  return key + (value < 0 ? "_minus_" : "_") + std::to_string(value < 0 ? -value : value);
}

}  // namespace

std::vector<Sequence> settingSequences() {
  std::vector<Sequence> list;
  for (const int level : {-2, -1, 0, 1, 2, 3, 4, 5, 6}) {
    list.push_back(withEntries(named("sensitivity", level), {"sensitivity " + std::to_string(level)}, 3,
                               ConfiguredBy::document));
  }
  for (const int level : {0, 1, 2, 3, 4, 5, 9}) {
    list.push_back(withEntries(named("adaptation", level),
                               {"sensitivity 2", "lcAdap " + std::to_string(level)}, level % 2 == 0 ? 4 : 1,
                               ConfiguredBy::document));
  }
  for (const int life : {0, -1, -1000000, -2000000000, 5}) {
    list.push_back(
        withEntries(named("life", life), {"lifeStatic " + std::to_string(life)}, 3, ConfiguredBy::document));
  }
  for (const int matches : {1, 2, 3, 20, 21}) {
    list.push_back(withEntries(named("matches", matches), {"MIN_MATCH_NUM " + std::to_string(matches)}, 3,
                               ConfiguredBy::parameters));
  }
  list.push_back(
      withEntries("matches_20_grey", {"MIN_MATCH_NUM 20", "MIN_MATCH_DIST 30"}, 1, ConfiguredBy::parameters));
  const auto add = [&](const std::string& name, std::vector<std::string> entries) {
    list.push_back(withEntries(name, std::move(entries), 3, ConfiguredBy::parameters));
  };
  add("ghosts_stay", {"GHOST_SUPPRESSION 0"});
  add("ghosts_stay_negative", {"GHOST_SUPPRESSION -3"});
  add("light_ignored", {"ILLUMINATION_CHANGE 0"});
  add("both_off", {"ILLUMINATION_CHANGE 0", "GHOST_SUPPRESSION 0"});
  add("automatic_thresholds", {"sensitivity 1", "sensitivity_auto 1", "sensitivity_auto 2"});
  add("last_writer_wins", {"sensitivity 1", "MIN_MATCH_DIST 4", "THR_DIFF_HEURISTIC 0", "minBoxW 0.5",
                           "MIN_BOUNDING_BOX_W 0.3", "MIN_BOUNDING_BOX_H 1", "minBoxH 1.01"});
  add("odd_entries", {"minBoxW\t0.2", "minBoxH", "", "  MIN_MATCH_DIST   12px rest", "maxBoxW 3", "FRMW 9",
                      "NUM_PERIOD_LOCK 0", "MIN_MATCH_NUM 0", "minBoxH 0"});
  for (const int width : {1, 3, 4, 5, 7, 10, 20, 21}) {
    add(named("lock", width), {"NUM_SEGMENT_LOCK " + std::to_string(width), "NUM_PERIOD_LOCK 3", "lcAdap 5"});
  }
  add("lock_every_frame", {"NUM_PERIOD_LOCK 1", "sensitivity 1", "lcAdap 5"});
  return list;
}
