// The background model: absorption, life bands, lighting changes, refresh and the exact limits of their
// branches.
#include <cstring>

#include "tests/system/sequence.h"

namespace {

using scene::Area;
using scene::Scene;

Sequence sequenceOf(const std::string& name, const Scene& scene, int frames, int interval = 200) {
  return {.name = name,
          .width = scene.width,
          .height = scene.height,
          .frames = frames,
          .frame = framesOf(scene, interval)};
}

// Parked for longer than the life of fifteen frames, then gone.
Sequence parkedThenGone(int channels) {
  return sequenceOf("parked_then_gone_channels_" + std::to_string(channels),
                    {.width = 48,
                     .height = 40,
                     .channels = channels,
                     .texture = 10,
                     .noise = 1,
                     .things = {{.area = {-14, 12, 14, 14}, .from = 2, .until = 60, .dx = 3, .moves = 9},
                                {.area = {30, 5, 12, 12}, .from = 20, .shade = 120}}},
                    100);
}

// Foreground that changes by exactly 10, 20 and 30 between frames, by one more each, and by more than all
// bands. The middle of each object stays outside the match radius while its brightness varies.
Sequence lifeBands(int channels) {
  Scene scene{.width = 60, .height = 24, .channels = channels, .texture = 0, .things = {}};
  int x = 0;
  for (const int flicker : {10, 11, 20, 21, 30, 31}) {
    scene.things.push_back({.area = {x, 4, 10, 16}, .from = 2, .until = 40, .flicker = flicker});
    x += 10;
  }
  return sequenceOf("life_bands_channels_" + std::to_string(channels), scene, 60);
}

// One frame of life, then movement: life falls from exactly one.
Sequence lifeFromOne() {
  Scene scene{.width = 24, .height = 24, .texture = 0, .things = {}};
  scene.things = {{.area = {4, 4, 10, 10}, .from = 2, .until = 3, .shade = 200},
                  {.area = {4, 4, 10, 10}, .from = 3, .until = 5, .shade = 120},
                  {.area = {4, 4, 10, 10}, .from = 5, .until = 8, .shade = 250},
                  {.area = {4, 4, 10, 10}, .from = 8, .shade = 150, .flicker = 60}};
  return sequenceOf("life_falls_from_one", scene, 30);
}

// Noise between the heuristic threshold and the match radius: background that is occasionally refreshed.
Sequence refreshing(int channels, int noise) {
  Sequence sequence = sequenceOf(
      "refresh_noise_" + std::to_string(noise) + "_channels_" + std::to_string(channels),
      {.width = 17, .height = 11, .channels = channels, .base = 100, .texture = 4, .noise = noise}, 260);
  sequence.entries = {"THR_DIFF_HEURISTIC 4", "ILLUMINATION_CHANGE 0"};
  return sequence;
}

// A lamp over part of the frame (5 x 4, so that 3 of 20 pixels are exactly the share of 0.15).
Sequence shareOfLight(int pixels) {
  return sequenceOf("light_on_" + std::to_string(pixels) + "_of_20",
                    {.width = 5,
                     .height = 4,
                     .texture = 0,
                     .lights = {{{0, 0, pixels, 1}, 3, scene::forever, 12, 2}, {{0, 1, 1, 1}, 9, 20, 15, 2}}},
                    40);
}

// Single pixels and patches become brighter by different amounts, so that some changes spread and others stay
// isolated.
Sequence patchesOfLight(int channels) {
  Scene scene{.width = 40, .height = 30, .channels = channels, .texture = 3, .noise = 1, .lights = {}};
  for (int k = 0; k < 12; ++k) {
    scene.lights.push_back(
        {{(k * 7) % 38, (k * 5) % 28, 1 + k % 3, 1 + k % 2}, 2 + k, 70 - k, 3 + k, 1 + k % 4});
  }
  return sequenceOf("patches_of_light_channels_" + std::to_string(channels), scene, 80);
}

// The brightness of the whole picture rises and falls, so that every pixel is written in most frames and its
// cursor wraps around.
Sequence pulsingLight(int segment, int period) {
  Sequence sequence = sequenceOf(
      "pulsing_light_lock_" + std::to_string(segment) + "_every_" + std::to_string(period),
      {.width = 20,
       .height = 10,
       .texture = 6,
       .noise = 2,
       .lights = {{{0, 0, 20, 10}, 2, scene::forever, 12, 2}, {{0, 0, 9, 10}, 2, scene::forever, 7, 3}}},
      120);
  sequence.entries = {"NUM_SEGMENT_LOCK " + std::to_string(segment),
                      "NUM_PERIOD_LOCK " + std::to_string(period)};
  return sequence;
}

// Colours exactly at the match radius and one beyond.
Sequence atRadius(int channels) {
  return sequenceOf("at_match_radius_channels_" + std::to_string(channels),
                    {.width = 24,
                     .height = 16,
                     .channels = channels,
                     .texture = 0,
                     .lights = {{{0, 0, 6, 16}, 3, 20, 19},
                                {{6, 0, 6, 16}, 3, 20, 20},
                                {{12, 0, 6, 16}, 3, 20, 21},
                                {{18, 0, 6, 16}, 3, 20, 40}}},
                    40);
}

// Everything is foreground: no pixel is checked for lighting changes.
Sequence nothingExamined() {
  return sequenceOf("all_foreground",
                    {.width = 20, .height = 20, .things = {{.area = {0, 0, 20, 20}, .from = 2, .until = 12}}},
                    20);
}

// Other bands for the life counter.
Sequence otherBands() {
  Sequence sequence = lifeBands(3);
  sequence.name = "other_life_bands";
  sequence.before = [](int k, kAMBLE* engine, plain::Model& model) {
    if (k != 5 && k != 20) return;
    model.thresholdX2 = k == 5 ? 25 : -1;
    model.thresholdX3 = k == 5 ? 50 : 15;
    if (engine == nullptr) return;
    THRESH_SAME_PIXEL_x2 = model.thresholdX2;
    THRESH_SAME_PIXEL_x3 = model.thresholdX3;
  };
  return sequence;
}

}  // namespace

std::vector<Sequence> modelSequences() {
  std::vector<Sequence> list = {lifeFromOne(), nothingExamined(), otherBands()};
  for (const int channels : {1, 3, 4}) {
    append(list, {parkedThenGone(channels), lifeBands(channels), refreshing(channels, 9),
                  refreshing(channels, 11), patchesOfLight(channels), atRadius(channels)});
  }
  for (const int pixels : {2, 3, 4}) list.push_back(shareOfLight(pixels));
  for (const int segment : {1, 4, 5, 7, 20})
    append(list, {pulsingLight(segment, 2), pulsingLight(segment, 7)});
  return list;
}
