// The timestamp text of a frame.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include "tests/support/engine_fixture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

struct Accepted {
  const char* text;
  std::int64_t time;
  bool known;
};
void PrintTo(const Accepted& stamp, std::ostream* out) { *out << '"' << stamp.text << '"'; }

class AcceptedTimestamp : public ::testing::TestWithParam<Accepted> {};

TEST_P(AcceptedTimestamp, IsStoredAndKnownUnlessNegative) {
  kAMBLE engine;
  EXPECT_EQ(engine.setTimestamp(GetParam().text), GetParam().known);
  EXPECT_EQ(engine.curTimestamp, GetParam().time);
}

INSTANTIATE_TEST_SUITE_P(Timestamp, AcceptedTimestamp,
                         ::testing::Values(Accepted{"1000", 1000, true},   //
                                           Accepted{"0", 0, true},         //
                                           Accepted{"-0", 0, true},        //
                                           Accepted{"+7", 7, true},        //
                                           Accepted{" \t\n42", 42, true},  //
                                           Accepted{"42ms", 42, true},     //
                                           Accepted{"12.9", 12, true},     //
                                           Accepted{"0x10", 0, true},      //
                                           Accepted{"9223372036854775807", INT64_MAX, true},
                                           Accepted{"-1", -1, false},  //
                                           Accepted{"-5", -1, false},  //
                                           Accepted{"-9223372036854775808", -1, false}));

struct Refused {
  const char* name;
  const char* text;
  std::string thrown;
};
void PrintTo(const Refused& stamp, std::ostream* out) { *out << stamp.name; }

class RefusedTimestamp : public ::testing::TestWithParam<Refused> {};

TEST_P(RefusedTimestamp, ThrowsAndLeavesTheEarlierTime) {
  kAMBLE engine;
  engine.curTimestamp = 77;
  EXPECT_EQ(thrownBy([&] { engine.setTimestamp(GetParam().text); }), GetParam().thrown);
  EXPECT_EQ(engine.curTimestamp, 77);
}

const std::string noNumber = "std::invalid_argument: stoll";
const std::string outOfRange = "std::out_of_range: stoll";

INSTANTIATE_TEST_SUITE_P(Timestamp, RefusedTimestamp,
                         ::testing::Values(Refused{"null", nullptr, nullText},      //
                                           Refused{"empty", "", noNumber},          //
                                           Refused{"blank", " ", noNumber},         //
                                           Refused{"word", "abc", noNumber},        //
                                           Refused{"signOnly", "-", noNumber},      //
                                           Refused{"unitFirst", "ms42", noNumber},  //
                                           Refused{"above64Bits", "9223372036854775808", outOfRange},
                                           Refused{"below64Bits", "-9223372036854775809", outOfRange}),
                         byName);

TEST(Timestamp, ConversionPreservesErrno) {
  kAMBLE engine;
  errno = 7;
  engine.setTimestamp("1000");
  EXPECT_EQ(errno, 7);
}

}  // namespace
}  // namespace lm::test
