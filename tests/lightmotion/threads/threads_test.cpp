// 64 detectors in 8 threads give what one alone gives. tests/long/threads runs this under the thread
// sanitizer.
#include <gtest/gtest.h>

#include <thread>

#include "tests/lightmotion/fixture.h"

namespace lm::test {
namespace {

constexpr compact::Shape shape{96, 64, 3};

std::string run(const std::string& document, const std::vector<std::vector<std::uint8_t>>& frames) {
  const Detector detector(lightmotion_create(document.c_str(), nullptr, 0));
  std::string results;
  std::int64_t time = 0;
  for (const auto& frame : frames) {
    const lightmotion_box* boxes = nullptr;
    const int count = lightmotion_process(detector.get(), frame.data(), 0, time += 40, &boxes);
    results += described(count, boxes) + lightmotion_json(detector.get(), nullptr);
    if (time == 400) lightmotion_change(detector.get(), "{\"roi\": null, \"sensitivity\": 5}", nullptr, 0);
  }
  return results;
}

TEST(Threads, HaveNoEffectOnEachOther) {
  constexpr std::size_t threads = 8;
  constexpr std::size_t detectors = 64;
  const auto frames = framesOf({shape, Kind::passing, 3}, 20);
  const std::string document = documentOf(
      shape,
      R"("sensitivity": 4, "ror": [{"points": [{"x": 0, "y": 0}, {"x": 0.3, "y": 0}, {"x": 0.3, "y": 0.3}]}])");
  std::vector<std::string> results(detectors);
  // No detector before: what is found out once per process is found out by all of them at once.
  std::vector<std::thread> running;
  for (std::size_t thread = 0; thread < threads; ++thread) {
    running.emplace_back([&, thread] {
      for (std::size_t i = thread; i < detectors; i += threads) results[i] = run(document, frames);
    });
  }
  for (std::thread& thread : running) thread.join();
  const std::string expected = run(document, frames);
  EXPECT_GT(expected.size(), 1000U);
  for (const std::string& result : results) EXPECT_EQ(result, expected);
}

}  // namespace
}  // namespace lm::test
