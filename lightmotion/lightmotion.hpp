// lightmotion.h for C++17 and later, header only: objects that own their detector, exceptions, ranges.
//
//     lightmotion::Detector detector(R"({"frmW": 1280, "frmH": 720, "format": "bgr"})");
//     for (const lightmotion_box& box : detector.process(pixels, stride, milliseconds)) draw(box);
//
// The contracts are those of lightmotion.h: threads, how long results are valid, what a configuration is.
#ifndef LIGHTMOTION_LIGHTMOTION_HPP
#define LIGHTMOTION_LIGHTMOTION_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "lightmotion/lightmotion.h"

namespace lightmotion {

// A failure other than of memory, for which std::bad_alloc is thrown. what() names the key, the value and
// what would be right if it is a configuration's.
class Error : public std::runtime_error {
 public:
  Error(int code, const std::string& message) : std::runtime_error(message), code_(code) {}

  int code() const noexcept { return code_; }  // a lightmotion_error

 private:
  int code_;
};

// The boxes of a frame, owned by their detector.
class Boxes {
 public:
  Boxes(const lightmotion_box* first, std::size_t count) noexcept : first_(first), count_(count) {}

  const lightmotion_box* data() const noexcept { return first_; }
  const lightmotion_box* begin() const noexcept { return first_; }
  const lightmotion_box* end() const noexcept { return first_ + count_; }
  std::size_t size() const noexcept { return count_; }
  bool empty() const noexcept { return count_ == 0; }
  const lightmotion_box& operator[](std::size_t index) const noexcept { return first_[index]; }

 private:
  const lightmotion_box* first_;
  std::size_t count_;
};

// One detector. Can be moved; a detector that was moved from can only be assigned to or destroyed.
class Detector {
 public:
  explicit Detector(const std::string& configuration)
      : Detector(configuration, 0, 0, LIGHTMOTION_FORMAT_UNKNOWN) {}

  // lightmotion_create_for
  Detector(const std::string& configuration, std::int32_t width, std::int32_t height,
           lightmotion_format format) {
    Message message{};
    detector_.reset(
        lightmotion_create_for(configuration.c_str(), width, height, format, message.data(), message.size()));
    if (detector_ == nullptr) {
      const bool memory =
          std::string_view(message.data()) == lightmotion_error_text(LIGHTMOTION_ERROR_MEMORY);
      fail(memory ? LIGHTMOTION_ERROR_MEMORY : LIGHTMOTION_ERROR_CONFIGURATION, message.data());
    }
    warnings_ = message.data();
  }

  // Of the configuration, one per line; empty if there are none.
  const std::string& warnings() const noexcept { return warnings_; }

  // The boxes are valid until the next call that is not const.
  Boxes process(const void* pixels, std::size_t stride, std::int64_t timestamp_ms) {
    const lightmotion_box* boxes = nullptr;
    const int count = checked(lightmotion_process(get(), pixels, stride, timestamp_ms, &boxes));
    return {boxes, static_cast<std::size_t>(count)};
  }

  // Valid as long as the boxes.
  std::string_view json() {
    std::size_t length = 0;
    const char* text = lightmotion_json(get(), &length);
    if (text == nullptr) throw std::bad_alloc();
    return {text, length};
  }

  void change(const std::string& changes) {
    Message message{};
    const int outcome = lightmotion_change(get(), changes.c_str(), message.data(), message.size());
    if (outcome < 0) fail(outcome, message.data());
    warnings_ = message.data();
  }

  void reset() { checked(lightmotion_reset(get())); }

  // lightmotion_relearn
  void relearn(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
               const void* mask = nullptr, std::size_t stride = 0) {
    checked(lightmotion_relearn(get(), x, y, width, height, mask, stride));
  }

  // Rows without padding: width bytes, or width x bytes per pixel.
  std::vector<std::uint8_t> foreground() const { return picture(1, lightmotion_foreground); }
  std::vector<std::uint8_t> background() const {
    return picture(static_cast<std::size_t>(info().bytes_per_pixel), lightmotion_background);
  }

  // Throws std::out_of_range for an index that is none. Valid until change().
  std::string_view region_name(std::int32_t index) const {
    const char* name = lightmotion_region_name(get(), index);
    if (name == nullptr) throw std::out_of_range("lightmotion: no such region");
    return name;
  }

  lightmotion_info info() const {
    lightmotion_info info{};
    info.struct_size = sizeof info;
    checked(lightmotion_get_info(get(), &info));
    return info;
  }

  lightmotion_detector* get() const noexcept { return detector_.get(); }

 private:
  using Message = std::array<char, 4096>;

  struct Destroy {
    void operator()(lightmotion_detector* detector) const noexcept { lightmotion_destroy(detector); }
  };

  [[noreturn]] static void fail(int error, const char* message) {
    if (error == LIGHTMOTION_ERROR_MEMORY) throw std::bad_alloc();
    throw Error(error, message);
  }

  static int checked(int outcome) {
    if (outcome < 0) fail(outcome, lightmotion_error_text(outcome));
    return outcome;
  }

  template <typename Copy>
  std::vector<std::uint8_t> picture(std::size_t bytes_per_pixel, Copy copy) const {
    const lightmotion_info known = info();
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(known.width) *
                                     static_cast<std::size_t>(known.height) * bytes_per_pixel);
    checked(copy(get(), pixels.data(), 0));
    return pixels;
  }

  std::unique_ptr<lightmotion_detector, Destroy> detector_;
  std::string warnings_;
};

}  // namespace lightmotion

#endif  // LIGHTMOTION_LIGHTMOTION_HPP
