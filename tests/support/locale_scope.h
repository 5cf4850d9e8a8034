// Locales with a decimal comma, in which 1234.5 is written 1.234,5.
#pragma once

#include <locale>
#include <string>

namespace lm::test {

// Sets the C locale of the process to one with a decimal comma and points between thousands, until it is
// destroyed. localedef compiles it, so no locale needs to be installed.
class CommaCLocale {
 public:
  CommaCLocale();
  ~CommaCLocale();
  CommaCLocale(const CommaCLocale&) = delete;
  CommaCLocale& operator=(const CommaCLocale&) = delete;

  bool active() const { return active_; }  // false where localedef failed

 private:
  std::string folder_;
  std::string previous_;
  bool active_ = false;
};

// The same for C++ streams, with or without the grouping. Create it after a CommaCLocale and destroy it
// before.
class CommaCppLocale {
 public:
  explicit CommaCppLocale(bool groups = true);
  ~CommaCppLocale();
  CommaCppLocale(const CommaCppLocale&) = delete;
  CommaCppLocale& operator=(const CommaCppLocale&) = delete;

 private:
  std::locale previous_;
};

}  // namespace lm::test
