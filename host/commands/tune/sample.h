// The footage on which settings are tried.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/source/live/live_options.h"
#include "host/source/source.h"

namespace lm::host::commands::tune {

class Sample {
 public:
  using Look = std::function<void(const source::Frame&)>;

  // Reads the first `length` of the source. Frames are kept in memory if they fit; otherwise a recording is
  // read again each time. `each`: called for every frame read. Throws Failure if there are no frames, if a
  // live source's frames do not fit, and if the program is interrupted.
  Sample(std::string name, const source::Reading& reading, std::chrono::microseconds length,
         const Look& each);

  const source::SourceInfo& info() const { return info_; }
  std::int64_t frames() const { return frames_; }
  std::chrono::microseconds length() const { return length_; }  // to the end of the last frame
  const std::string& trouble() const { return trouble_; }       // see Source::trouble

  // All frames in order.
  void replay(const Look& look) const;

 private:
  void keep(const source::Frame& frame);

  std::string name_;
  source::Reading reading_;
  source::SourceInfo info_;
  std::int64_t frames_ = 0;
  std::chrono::microseconds length_{0};
  std::string trouble_;
  std::optional<std::vector<source::Frame>> kept_ = std::vector<source::Frame>();  // empty if they do not fit
  std::size_t bytes_ = 0;
};

}  // namespace lm::host::commands::tune
