// A file to which lines are appended as they come.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "host/base/outage.h"
#include "host/base/rotation.h"

namespace lm::host::base {

// For sources without an end: each line is in the file, under its final name, as soon as it is written, and
// survives the end of the program, however it ends. It is on the disk (fdatasync) within a second of frames.
//
// The file is continued if it exists. A last line that a killed program or a power cut left incomplete is
// completed if only its line feed is missing, otherwise removed. SIGHUP closes the file and opens its name
// again.
//
// A disk that is full or fails is reported once; up to a mebibyte of lines waits until there is room, later
// ones are lost.
class Journal {
 public:
  using Now = std::function<WallTime()>;

  // `begin`: what each file begins with. If that is a line, new files get it, and otherwise lines are JSON
  // objects. Throws Failure (kTrouble) if the file cannot be opened, begins with something else, or another
  // process writes to it. A full disk is no reason.
  Journal(const std::string& path, std::string begin, Rotation rotation,
          Now now = std::chrono::system_clock::now);
  // Appends to an open file, which is neither closed nor renamed. `name`: for messages.
  Journal(int file, std::string name);
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  // Whether `path` is a file, or will be one: pipes and devices are none.
  static bool takes(const std::string& path);

  void append(const std::string& line);  // with its line end
  void tick();                           // once per frame: does what is due
  void finish();                         // at the end: writes and syncs everything

 private:
  void open();  // throws Failure or std::system_error
  void check_begin() const;
  void try_to_open();
  void repair();
  void follow_hangups();
  void rotate_if_due();
  void rotate();
  void write_waiting();
  void sync();
  void report(int error);

  std::string path_;  // with symbolic links resolved; empty for a given file
  std::string name_;
  std::string begin_;
  bool headed_ = false;  // begin_ is a line
  Rotation rotation_;
  Now now_;
  Outage outage_;
  int file_ = -1;
  std::uint64_t size_ = 0;
  WallTime last_{};          // time of the last line
  std::string waiting_;      // whole lines that are not or not wholly in the file
  std::size_t written_ = 0;  // bytes of the first of them that are
  bool unsynced_ = false;
  std::chrono::steady_clock::time_point synced_{};
  int hangups_ = 0;
};

}  // namespace lm::host::base
