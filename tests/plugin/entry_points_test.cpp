#include <gtest/gtest.h>

#include "plugin/entry_points.h"

#include <json/json.h>

#include <type_traits>

#include "tests/plugin/scene.h"
#include "tests/support/by_name.h"
#include "tests/support/capture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

static_assert(std::is_same_v<decltype(initialization), bool(const char*)>);
static_assert(std::is_same_v<decltype(frameProc), int(const unsigned char*, const char*, int*)>);
static_assert(std::is_same_v<decltype(getRes), int(char*)>);
static_assert(std::is_same_v<decltype(terminate), int()>);

constexpr int untouched = -77;

class EntryPoints : public ::testing::Test {
 protected:
  // Every test starts and ends without a detector.
  EntryPoints() { ::terminate(); }
  ~EntryPoints() override { ::terminate(); }

  static bool start(const std::string& document = documentFor(smallGrey)) {
    return initialization(document.c_str());
  }

  // The length that frameProc reports.
  static int feed(const std::vector<Rect>& objects, const char* timestamp) {
    int length = untouched;
    EXPECT_EQ(frameProc(frameWith(smallGrey, objects).data(), timestamp, &length), 1);
    return length;
  }

  static std::string result() {
    std::vector<char> out(4096, 'x');
    EXPECT_EQ(getRes(out.data()), 1);
    return out.data();
  }

  static void expectWorkingDetector() {
    EXPECT_EQ(feed({}, "1000"), 0);
    EXPECT_GT(feed({block}, "1040"), 0);
    EXPECT_EQ(result(), resultOf(blockBox, "1040"));
  }

  static void expectNoDetector() {
    int length = untouched;
    const Bytes frame = frameWith(smallGrey, {});
    EXPECT_EQ(frameProc(frame.data(), "1000", &length), 0);
    EXPECT_EQ(length, untouched);
    char out = 'x';
    EXPECT_EQ(getRes(&out), 0);
    EXPECT_EQ(out, 'x');
  }

 private:
  Capture quiet_{stderr};  // the engine's line on every first frame
};

TEST_F(EntryPoints, AValidDocumentGivesAWorkingDetector) {
  const Printed printed = printedBy([] { EXPECT_TRUE(start()); });
  EXPECT_EQ(printed, Printed{});
  expectWorkingDetector();
}

TEST_F(EntryPoints, ASecondInitializationIsRefusedSilentlyAndTheFirstDetectorKeepsItsConfiguration) {
  ASSERT_TRUE(start());
  const Printed printed = printedBy([] { EXPECT_FALSE(start(documentFor({8, 8, 3}))); });
  EXPECT_EQ(printed, Printed{});
  expectWorkingDetector();
}

TEST_F(EntryPoints, ASecondInitializationDoesNotReadItsDocument) {
  ASSERT_TRUE(start());
  const Printed printed = printedBy([] {
    EXPECT_FALSE(initialization("not json"));
    EXPECT_FALSE(initialization(nullptr));
  });
  EXPECT_EQ(printed, Printed{});
  expectWorkingDetector();
}

TEST_F(EntryPoints, ASecondInitializationKeepsTheResultOfTheLastFrame) {
  ASSERT_TRUE(start());
  expectWorkingDetector();
  EXPECT_FALSE(start());
  EXPECT_EQ(result(), resultOf(blockBox, "1040"));
}

TEST_F(EntryPoints, ARefusedDocumentLeavesNoDetectorAndAValidOneIsAcceptedLater) {
  const Printed printed = printedBy([] { EXPECT_FALSE(start(documentFor({64, 0, 1}))); });
  EXPECT_EQ(printed.out, "Error: invalid parameter[frmChn:1,frmW:64,frmH:0] \n");
  expectNoDetector();
  EXPECT_TRUE(start());
  expectWorkingDetector();
}

TEST_F(EntryPoints, FrameProcAndGetResReturn0BeforeAnyInitialization) { expectNoDetector(); }

TEST_F(EntryPoints, FrameProcAndGetResReturn0AfterTerminate) {
  ASSERT_TRUE(start());
  expectWorkingDetector();
  ::terminate();
  expectNoDetector();
}

TEST_F(EntryPoints, WithoutADetectorNoArgumentIsReadAndNothingIsPrinted) {
  const Printed printed = printedBy([] {
    EXPECT_EQ(frameProc(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(getRes(nullptr), 0);
  });
  EXPECT_EQ(printed, Printed{});
}

TEST_F(EntryPoints, TerminateReturns1WithoutADetectorToo) {
  EXPECT_EQ(::terminate(), 1);
  EXPECT_EQ(::terminate(), 1);
}

TEST_F(EntryPoints, TerminateTwiceReturns1BothTimes) {
  ASSERT_TRUE(start());
  EXPECT_EQ(::terminate(), 1);
  EXPECT_EQ(::terminate(), 1);
  expectNoDetector();
}

TEST_F(EntryPoints, GetResBeforeAnyFrameCopiesTheEmptyText) {
  ASSERT_TRUE(start());
  char out[2] = {'x', 'x'};
  EXPECT_EQ(getRes(out), 1);
  EXPECT_EQ(out[0], '\0');
  EXPECT_EQ(out[1], 'x');
}

TEST_F(EntryPoints, TheReportedLengthIsThatOfTheTextThatGetResCopies) {
  ASSERT_TRUE(start());
  feed({}, "1000");
  const int length = feed({block}, "1040");
  const std::string text = result();
  EXPECT_EQ(static_cast<std::size_t>(length), text.size());
  EXPECT_EQ(text.back(), '\n');
}

TEST_F(EntryPoints, GetResWritesTheTextAndItsNulAndNothingMore) {
  ASSERT_TRUE(start());
  feed({}, "1000");
  const auto length = static_cast<std::size_t>(feed({block}, "1040"));
  std::vector<char> out(length + 2, 'x');
  getRes(out.data());
  EXPECT_EQ(out[length], '\0');
  EXPECT_EQ(out[length + 1], 'x');
}

TEST_F(EntryPoints, AfterTerminateANewInitializationStartsOver) {
  ASSERT_TRUE(start());
  expectWorkingDetector();
  ::terminate();
  ASSERT_TRUE(start());
  EXPECT_EQ(result(), "");
  // The block is in the first frame of the new detector, so it is background.
  EXPECT_EQ(feed({block}, "1000"), 0);
  EXPECT_EQ(feed({block}, "1040"), 0);
}

TEST_F(EntryPoints, EveryDetectorPrintsItsFrameSizeOnceAtItsFirstFrame) {
  for (int life = 0; life < 2; ++life) {
    ASSERT_TRUE(start());
    EXPECT_EQ(printedBy([] { feed({}, "1000"); }), (Printed{"", "W, H, Pixels = 64, 32, 2048\n"}));
    EXPECT_EQ(printedBy([] { feed({block}, "1040"); }), Printed{});
    ::terminate();
  }
}

// ---- exceptions ---------------------------------------------------------------------------------

TEST_F(EntryPoints, ANullDocumentThrowsAndLeavesNoDetector) {
  EXPECT_EQ(thrownBy([] { initialization(nullptr); }), nullText);
  expectNoDetector();
  EXPECT_TRUE(start());
  expectWorkingDetector();
}

TEST_F(EntryPoints, ATimestampThatIsNotANumberThrowsAndTheDetectorContinues) {
  const std::vector<std::pair<const char*, std::string>> cases = {
      {nullptr, nullText},
      {"", "std::invalid_argument: stoll"},
      {"noon", "std::invalid_argument: stoll"},
      {"9223372036854775808", "std::out_of_range: stoll"},
      {"-9223372036854775809", "std::out_of_range: stoll"},
  };
  ASSERT_TRUE(start());
  feed({}, "1000");
  const Bytes frame = frameWith(smallGrey, {block});
  for (const auto& [timestamp, expected] : cases) {
    ASSERT_GT(feed({block}, "1040"), 0);
    int length = untouched;
    EXPECT_EQ(thrownBy([&, text = timestamp] { frameProc(frame.data(), text, &length); }), expected);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(result(), "");
  }
  EXPECT_GT(feed({block}, "1080"), 0);
  EXPECT_EQ(result(), resultOf(blockBox, "1080"));
}

struct BadDocument {
  const char* name;
  std::string document;
  std::string expected;
};
void PrintTo(const BadDocument& bad, std::ostream* out) { *out << bad.document; }

class BadDocuments : public EntryPoints, public ::testing::WithParamInterface<BadDocument> {};

TEST_P(BadDocuments, ThrowAndLeaveNoDetectorAndNoMessage) {
  const Printed printed =
      printedBy([] { EXPECT_EQ(thrownBy([] { start(GetParam().document); }), GetParam().expected); });
  EXPECT_EQ(printed, Printed{});
  expectNoDetector();
  EXPECT_TRUE(start());
  expectWorkingDetector();
}

std::string pointsWith(const std::string& x) {
  return R"({"points":[{"x":)" + x + R"(,"y":"0"},{"x":"1","y":"0"},{"x":"1","y":"1"}]})";
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, BadDocuments,
    ::testing::Values(
        BadDocument{"SizeWithoutANumber", R"({"frmW":"wide","frmH":"32","frmChn":"1"})",
                    "std::invalid_argument: stoi"},
        BadDocument{"EmptySize", R"({"frmW":"","frmH":"32","frmChn":"1"})", "std::invalid_argument: stoi"},
        BadDocument{"SizeOutOfRange", R"({"frmW":"2147483648","frmH":"32","frmChn":"1"})",
                    "std::out_of_range: stoi"},
        BadDocument{"SensitivityInWords", documentFor(smallGrey, R"(,"sensitivity":"high")"),
                    "std::invalid_argument: stoi"},
        BadDocument{"SensitivityOutOfRange", documentFor(smallGrey, R"(,"sensitivity":"3000000000")"),
                    "std::out_of_range: stoi"},
        BadDocument{"BoxSizeInWords", documentFor(smallGrey, R"(,"minBoxW":"x")"),
                    "std::invalid_argument: stof"},
        BadDocument{"BoxSizeOutOfRange", documentFor(smallGrey, R"(,"minBoxH":"1e39")"),
                    "std::out_of_range: stof"},
        BadDocument{"CoordinateInWords", documentFor(smallGrey, "", pointsWith(R"("left")")),
                    "std::invalid_argument: stof"},
        BadDocument{"CoordinateOutOfRange", documentFor(smallGrey, "", pointsWith(R"("1e39")")),
                    "std::out_of_range: stof"}),
    byName);

// JSON of the wrong kind: jsoncpp's exception reaches the host, whatever its text.
struct WrongKind {
  const char* name;
  std::string document;
};
void PrintTo(const WrongKind& wrong, std::ostream* out) { *out << wrong.document; }

class WrongKinds : public EntryPoints, public ::testing::WithParamInterface<WrongKind> {};

TEST_P(WrongKinds, ThrowAJsonExceptionAndLeaveNoDetector) {
  const std::string& document = GetParam().document;
  EXPECT_THROW(start(document), Json::Exception) << document;
  expectNoDetector();
  EXPECT_TRUE(start());
  expectWorkingDetector();
}

INSTANTIATE_TEST_SUITE_P(
    Documents, WrongKinds,
    ::testing::Values(WrongKind{"RootArray", "[1, 2]"}, WrongKind{"RootString", R"("frmW")"},
                      WrongKind{"RootNumber", "12"}, WrongKind{"RootTrue", "true"},
                      WrongKind{"RegionNumber", documentFor(smallGrey, "", "7")},
                      WrongKind{"RegionString", documentFor(smallGrey, "", R"("gate")")},
                      WrongKind{"RegionArray", documentFor(smallGrey, "", "[[]]")},
                      WrongKind{"ExcludedRegionString", documentFor(smallGrey, R"(,"ror":["gate"])")},
                      WrongKind{"PointNumbers", documentFor(smallGrey, "", R"({"points":[1,2,3]})")},
                      WrongKind{"PointArrays",
                                documentFor(smallGrey, "", R"({"points":[[0,0],[1,0],[1,1]]})")},
                      WrongKind{"CoordinateObject", documentFor(smallGrey, "", pointsWith("{}"))},
                      WrongKind{"CoordinateArray", documentFor(smallGrey, "", pointsWith("[0.5]"))}),
    byName);

}  // namespace
}  // namespace lm::test
