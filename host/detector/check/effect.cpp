#include "host/detector/check/effect.h"

#include <unistd.h>

#include <cmath>

#include "base/integers.h"
#include "config/check/findings.h"
#include "config/check/min_box.h"
#include "engine/rules.h"

namespace lm::host::detector::check {
namespace {

// For frames of 3 channels, beside a mask for every region: docs/architecture.md.
constexpr std::uint64_t kBytesPerPixel = 73;

constexpr double kUsualRate = 30;  // frames per second

std::string in_pixels(cv::Size size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
}

}  // namespace

Effective in_effect(const Settings& settings, std::optional<cv::Size> frame, std::size_t regions) {
  Effective effective;
  effective.thr_match = settings.thrMatch;
  effective.thr_heuris = settings.thrHeuris;
  effective.thr_illum = settings.thrIllum;
  effective.auto_sensitivity = settings.autoSensitivity;
  effective.life_static_seconds = settings.lifeStatic;
  effective.life_static = staticLifeFrames(settings.lifeStatic, kUsualRate);
  effective.min_box_width = static_cast<double>(settings.minObjW);
  effective.min_box_height = static_cast<double>(settings.minObjH);
  if (!frame) return effective;
  effective.frame = *frame;
  const lm::check::MinBox least = lm::check::minBoxOf(settings, {frame->width, frame->height, 3});
  effective.min_box_pixels = {least.width, least.height};
  const auto pixels = static_cast<std::uint64_t>(frame->width) * static_cast<std::uint64_t>(frame->height);
  effective.memory = pixels * (kBytesPerPixel + regions);
  return effective;
}

Effective in_effect(const HandleConfiguration& configuration) {
  const FrameSize& frame = configuration.frame;
  const bool has_size = frame.frmW > 0 && frame.frmH > 0;
  Effective effective = in_effect(
      configuration.settings, has_size ? std::optional(cv::Size(frame.frmW, frame.frmH)) : std::nullopt, 0);
  if (has_size) effective.watched = configuration.coverage.share;
  effective.memory += (configuration.coverage.regions.size() + 1) * configuration.coverage.watched.bytes();
  effective.extent = nameOf(configuration.extent);
  effective.peeled = configuration.peeled;
  if (configuration.absorbSeconds > 0) {
    effective.life_static_seconds = configuration.absorbSeconds;
    effective.life_static =
        std::isinf(configuration.absorbSeconds) ? 0 : toInt32(configuration.absorbSeconds * kUsualRate);
  }
  return effective;
}

void check_memory(const Effective& effective, std::uint64_t installed, Findings& findings) {
  if (installed == 0 || effective.memory <= installed) return;
  findings.add(Severity::warning, "",
               "the detector needs " + memory_text(effective.memory) + " for frames of " +
                   in_pixels(effective.frame) + "; this computer has " + memory_text(installed),
               "use smaller frames (--scale)");
}

std::uint64_t installed_memory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long size = sysconf(_SC_PAGESIZE);
  return pages > 0 && size > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size) : 0;
}

std::string memory_text(std::uint64_t bytes) {
  constexpr std::uint64_t kMega = 1'000'000;
  return bytes >= 10'000 * kMega ? std::to_string(bytes / (1000 * kMega)) + " GB"
                                 : std::to_string((bytes + kMega / 2) / kMega) + " MB";
}

}  // namespace lm::host::detector::check
