// --keep and --keep-size: limits what a camera leaves on the disk.
#pragma once

#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "host/events/listener.h"
#include "host/outputs/retention/sweep.h"

namespace lm::host::outputs::retention {

// Sweeps at the start and then once a minute, in a thread: a large folder on a slow disk takes a while.
class Retention : public events::EventListener {
 public:
  Retention(Places places, Limits limits);

  void frame(const source::Frame&, const events::Observation&) override { print_reports(); }
  void finish() override { print_reports(); }

 private:
  void work(const std::stop_token& stop);
  void print_reports();

  Places places_;
  Limits limits_;
  std::mutex mutex_;
  std::vector<std::string> reports_;
  std::vector<std::string> troubles_;
  std::jthread thread_;  // last: uses the others
};

}  // namespace lm::host::outputs::retention
