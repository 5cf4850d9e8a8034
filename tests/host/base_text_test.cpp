// Texts that outputs and messages have in common.
#include <gtest/gtest.h>

#include "host/base/csv.h"
#include "host/base/failure.h"
#include "host/base/number_option.h"
#include "host/base/time_text.h"

namespace {

using namespace lm::host::base;
using namespace std::chrono_literals;

TEST(Csv, QuotesCellsThatWouldEndACellOrARow) {
  EXPECT_EQ(csv_row({"a b", "a,b", "a\"b", "a\rb", "a\nb", ""}),
            "a b,\"a,b\",\"a\"\"b\",\"a\rb\",\"a\nb\",\r\n");
}

TEST(OneLine, HasNoControlCharacters) {
  EXPECT_EQ(one_line("a\x7f"
                     "b\r\n\tc"),
            "a b c");
}

TEST(SecondsText, IsRoundedToThousandths) {
  EXPECT_EQ(seconds_text(1'000'400us), "1.000");
  EXPECT_EQ(seconds_text(1'000'600us), "1.001");
  EXPECT_EQ(seconds_text(59'999'600us), "60.000");
}

TEST(NumberRange, IncludesItsLimits) {
  const NumberRange range{0.5, 4096, "s"};
  EXPECT_EQ(number_fault("0.5", range), "");
  EXPECT_EQ(number_fault("4096", range), "");
  EXPECT_EQ(number_fault("4096.5", range), "must be 0.5 to 4096 s, not 4096.5");
}

}  // namespace
