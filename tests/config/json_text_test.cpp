// Numbers of a document are read as in the "C" locale, whatever the global locale is.
#include "config/json_text.h"

#include <gtest/gtest.h>

#include <json/json.h>

#include <cmath>
#include <optional>

#include "tests/config/comma_locale.h"

namespace lm::test {
namespace {

// The member "a" of the document, or nothing when it is refused.
std::optional<double> valueIn(const std::string& document) {
  Json::Value root;
  if (!parseDocument(document, root)) return std::nullopt;
  return root["a"].asDouble();
}

std::optional<double> valueOf(const std::string& number) { return valueIn("{\"a\":" + number + "}"); }

struct Case {
  std::string number;
  std::optional<double> value;
};

// As jsoncpp reads them in the "C" locale.
const std::vector<Case> cases = {
    {"0.25", 0.25},
    {"-0.25", -0.25},
    {"0.1", 0.1},
    {"1234567.875", 1234567.875},
    {"1.5e3", 1500.0},
    {"1.5e+3", 1500.0},
    {"1.5E-3", 0.0015},
    {"1.5e0003", 1500.0},
    {"1.", 1.0},
    {"1.e2", 100.0},
    {"-.5", -0.5},
    {"-2.5e-1", -0.25},
    // Exponents out of integer range.
    {"0.5e-9223372036854775808", 0.0},
    {"5.5e-9223372036854775808", 0.0},
    {"5.5e-9223372036854775807", 0.0},
    {"5.5e-99999999999999999999999", 0.0},
    {"0.0e99999999999999999999999", 0.0},
    // Not numbers.
    {"1.5e+-3", std::nullopt},
    {"1.5e-+3", std::nullopt},
    {"1.5e", std::nullopt},
    {"1.5e+", std::nullopt},
    {"1.5e-", std::nullopt},
    {"1.5E", std::nullopt},
    {"1.e", std::nullopt},
    {"-.", std::nullopt},
    {"-.e5", std::nullopt},
    {".5", std::nullopt},
    {"+1.5", std::nullopt},
    {"1.5.5", std::nullopt},
    {"1.5-2", std::nullopt},
    {"1.5e2.5", std::nullopt},
    {"1,5", std::nullopt},
};

void expectEveryCase() {
  for (const Case& of : cases) EXPECT_EQ(valueOf(of.number), of.value) << of.number;
  // Beyond every number: older versions of jsoncpp refuse it, newer ones make it infinite.
  for (const char* number : {"5.5e9223372036854775807", "5.5e99999999999999999999999"}) {
    const std::optional<double> value = valueOf(number);
    EXPECT_TRUE(!value || std::isinf(*value)) << number;
  }
}

// A carriage return ends a // comment too.
void expectComments() {
  EXPECT_EQ(valueIn("{\"a\": // c\r 0.25}"), 0.25);
  EXPECT_EQ(valueIn("{\"a\": // c\r\n 0.25}"), 0.25);
  EXPECT_EQ(valueIn("{\"a\": // c\n 0.25}"), 0.25);
  EXPECT_EQ(valueIn("{\"a\": // \"\r 0.25}"), 0.25);
  EXPECT_EQ(valueIn("{\"a\": /* 1.5\r // \" */ 0.25}"), 0.25);
  EXPECT_EQ(valueIn("{\"a\": 0.25} // c"), 0.25);
}

TEST(JsonText, NumbersInTheCLocale) { expectEveryCase(); }
TEST(JsonText, CommentsInTheCLocale) { expectComments(); }

class JsonTextWithComma : public CommaLocale {};
INSTANTIATE_TEST_SUITE_P(Of, JsonTextWithComma,
                         ::testing::Values(Comma::c, Comma::cpp, Comma::cppWithoutGroups, Comma::both),
                         nameOf);

TEST_P(JsonTextWithComma, NumbersAsInTheCLocale) { expectEveryCase(); }
TEST_P(JsonTextWithComma, CommentsAsInTheCLocale) { expectComments(); }

TEST(JsonText, OnlyNumbersWithADecimalPointAreRewritten) {
  EXPECT_EQ(withoutDecimalPoints("[0.25, -1.50, 12., -.5, 2.5e1]"), "[025e-2, -150e-2, 12e0, -5e-1, 25e0]");
  EXPECT_EQ(withoutDecimalPoints("[1.5e, 1.5e+-3]"), "[15e, 15e+-3]");
  for (const std::string same : {"", "1", "1e+-3", "1e", "-", "\"1.5\"", "\"\\\"1.5\"", "\"1.5", "// 1.5",
                                 "/* 1.5 */", "/* 1.5", ".", "a.b", "\\"}) {
    EXPECT_EQ(withoutDecimalPoints(same), same);
  }
}

}  // namespace
}  // namespace lm::test
