// The open engine and the compact one side by side, configured alike and given the same frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compact/engine.h"
#include "engine/kamble.h"
#include "tests/support/guarded_buffer.h"

class Pair {
 public:
  // `level`: of the processor, for the compact engine.
  Pair(const lm::compact::Shape& shape, std::vector<std::string> entries, std::vector<polygon> include,
       std::vector<polygon> exclude, int level);
  Pair(const lm::compact::Shape& shape, std::vector<std::string> entries, std::vector<polygon> include,
       std::vector<polygon> exclude, const lm::compact::Kernels& kernels);

  // Whether the compact engine takes this configuration.
  bool suits() const { return suits_; }

  // Gives both a frame; what differs afterwards, or "". The frame lies beside an inaccessible page. Without
  // pixels it is null, which both refuse.
  std::string feed(const std::vector<std::uint8_t>& pixels, const std::string& timestamp);

  // As if so many frames had been learned; after the first.
  void setFrameCount(std::int32_t count) { open_.frmCount = settings_.frmCount = count; }

  int frames() const { return frames_; }  // learned
  std::size_t boxes() const { return boxes_.size(); }

 private:
  const std::uint8_t* placed(const std::vector<std::uint8_t>& pixels);
  std::vector<boxRect> boxesOfOpen();
  std::string compareMasks() const;
  std::string compareState() const;

  lm::compact::Shape shape_;
  kAMBLE open_;
  kAMBLE settings_;
  lm::compact::Engine compact_;
  GuardedBuffer frame_;
  std::vector<boxRect> boxes_;
  int frames_ = 0;
  bool suits_ = false;
};

// The levels of this processor for which the kernels differ.
std::vector<int> levels();
