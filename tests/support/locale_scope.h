// Hosts that write 1.234,5 for one thousand two hundred and thirty-four and a half.
#pragma once

#include <locale>
#include <string>

namespace lm::test {

// While it lives, the process's C locale has a decimal comma and groups thousands with points. The locale is
// compiled on the spot with localedef, so no locale needs to be installed.
class CommaCLocale {
 public:
  CommaCLocale();
  ~CommaCLocale();
  CommaCLocale(const CommaCLocale&) = delete;
  CommaCLocale& operator=(const CommaCLocale&) = delete;

  bool active() const { return active_; }  // false where the locale could not be made

 private:
  std::string folder_;
  std::string previous_;
  bool active_ = false;
};

// The same for C++ streams. Lives inside a CommaCLocale's life where both are wanted.
class CommaCppLocale {
 public:
  CommaCppLocale();
  ~CommaCppLocale();
  CommaCppLocale(const CommaCppLocale&) = delete;
  CommaCppLocale& operator=(const CommaCppLocale&) = delete;

 private:
  std::locale previous_;
};

}  // namespace lm::test
