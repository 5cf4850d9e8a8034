// The annotated video: the frames with their boxes drawn, under a temporary name until complete. Of a live
// source it ends where it cannot be written further, without ending the run.
#pragma once

#include <chrono>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "host/base/pending_file.h"
#include "host/events/box.h"
#include "host/outputs/video_writer.h"
#include "host/source/source.h"

namespace lm::host::outputs {

class Annotator {
 public:
  // `file`: a name that video_format accepts. Throws Failure (kTrouble), as do all operations.
  Annotator(const std::string& file, const source::SourceInfo& source);

  // Draws into the frame's own image.
  void write(source::Frame& frame, const events::Boxes& boxes);
  void finish();  // flushes everything
  void commit();  // gives the file its name

 private:
  template <typename Write>
  void attempt(const Write& write);

  const bool live_;
  bool ended_ = false;
  base::PendingFile pending_;
  VideoWriter video_;
};

}  // namespace lm::host::outputs
