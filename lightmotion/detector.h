// What a handle stands for: a configuration, the compact engine and the results of the last frame.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "compact/engine.h"
#include "config/handle_document.h"
#include "engine/kamble.h"
#include "lightmotion/lightmotion.h"
#include "objects/box.h"

// May throw std::bad_alloc where nothing else is said. What throws has changed nothing, except a frame that
// was learned and whose boxes are lost.
struct lightmotion_detector {
 public:
  // `document`: what `configuration` was read from.
  lightmotion_detector(const Json::Value& document, lm::HandleConfiguration configuration);

  const Json::Value& document() const { return document_; }
  const lm::HandleConfiguration& configuration() const { return configuration_; }
  void change(Json::Value document, lm::HandleConfiguration configuration);
  void reset() noexcept;
  void relearn(const lm::compact::Area& area, const std::uint8_t* mask, std::size_t stride);
  // After a frame that failed: no results; one that failed as the first has not been.
  void lost() noexcept;

  // False when an allocation fails. `stride`: at least the bytes of a row.
  bool process(const std::uint8_t* pixels, std::size_t stride, std::int64_t milliseconds);
  const std::vector<lightmotion_box>& boxes() const { return boxes_; }
  const std::string& json();

  std::size_t rowBytes() const;
  const lm::compact::Engine& engine() const { return *engine_; }
  lightmotion_info info() const;

 private:
  lm::compact::Shape shape() const;
  bool makeRoiMask();
  void forgetResults() noexcept;
  void addBox(const boxRect& box);
  bool touches(const lm::check::PixelBits& region, const lightmotion_box& box) const;

  Json::Value document_;
  lm::HandleConfiguration configuration_;
  std::optional<kAMBLE> settings_;
  std::optional<lm::compact::Engine> engine_;
  std::int64_t frames_ = 0;
  std::int64_t milliseconds_ = 0;  // of the last frame

  std::vector<boxRect> objects_;
  std::vector<lightmotion_box> boxes_;
  std::vector<std::int32_t> touched_;  // regions of all boxes, one after the other
  std::string json_;
};
