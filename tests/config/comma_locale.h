// Runs a test in every kind of locale with a decimal comma.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <sstream>

#include "tests/support/locale_scope.h"

namespace lm::test {

enum class Comma { c, cpp, cppWithoutGroups, both };

inline void PrintTo(Comma comma, std::ostream* out) { *out << static_cast<int>(comma); }

class CommaLocale : public ::testing::TestWithParam<Comma> {
 protected:
  void SetUp() override {
    if (GetParam() == Comma::c || GetParam() == Comma::both) {
      c_ = std::make_unique<CommaCLocale>();
      if (!c_->active()) GTEST_SKIP() << "localedef did not compile the locale with a decimal comma";
      ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }
    if (GetParam() != Comma::c) {
      const bool groups = GetParam() != Comma::cppWithoutGroups;
      cpp_ = std::make_unique<CommaCppLocale>(groups);
      ASSERT_EQ((std::ostringstream() << 1234.5).str(), groups ? "1.234,5" : "1234,5");
    }
  }
  void TearDown() override {
    cpp_.reset();
    c_.reset();
  }

  std::unique_ptr<CommaCLocale> c_;
  std::unique_ptr<CommaCppLocale> cpp_;
};

inline std::string nameOf(const ::testing::TestParamInfo<Comma>& test) {
  switch (test.param) {
    case Comma::c:
      return "C";
    case Comma::cpp:
      return "Cpp";
    case Comma::cppWithoutGroups:
      return "CppWithoutGroups";
    default:
      return "Both";
  }
}

}  // namespace lm::test
