// The scalar settings of the document.
#include <gmock/gmock.h>

#include <json/json.h>

#include "plugin/detector.h"
#include "tests/support/capture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Document : public ::testing::Test {
 protected:
  std::vector<std::string> entries(const std::string& document) {
    std::vector<std::string> list;
    const Printed printed = printedBy([&] { list = detector_.myjsonReader(document); });
    EXPECT_EQ(printed, Printed{});
    return list;
  }

  void expectSizes(int width, int height, int channels) const {
    EXPECT_EQ(detector_.frmW, width);
    EXPECT_EQ(detector_.frmH, height);
    EXPECT_EQ(detector_.frmChn, channels);
  }

  lightMotion detector_;
};

TEST_F(Document, TheThreeSizesGiveThreeEntriesAndSetTheMembers) {
  EXPECT_THAT(entries(R"({"frmW":"640","frmH":"480","frmChn":"3"})"),
              ElementsAre("frmW 640", "frmH 480", "frmChn 3"));
  expectSizes(640, 480, 3);
}

TEST_F(Document, EntriesHaveAFixedOrderWhateverTheOrderInTheDocument) {
  const auto all = ElementsAre("frmW 1", "frmH 2", "frmChn 3", "sensitivity 4", "lcAdap 5", "minBoxW 6",
                               "minBoxH 7", "maxBoxW 8", "maxBoxH 9", "lifeStatic 10");
  EXPECT_THAT(entries(R"({"frmW":"1","frmH":"2","frmChn":"3","sensitivity":"4","lcAdap":"5","minBoxW":"6",)"
                      R"("minBoxH":"7","maxBoxW":"8","maxBoxH":"9","lifeStatic":"10"})"),
              all);
  EXPECT_THAT(
      entries(R"({"lifeStatic":"10","maxBoxH":"9","maxBoxW":"8","minBoxH":"7","minBoxW":"6","lcAdap":"5",)"
              R"("sensitivity":"4","frmChn":"3","frmH":"2","frmW":"1"})"),
      all);
}

TEST_F(Document, ASizeGivenAsANumberIsIgnored) {
  EXPECT_THAT(entries(R"({"frmW":640})"), IsEmpty());
  expectSizes(0, 0, 0);
  EXPECT_THAT(entries(R"({"frmH":"1080","frmW":"1920","sensitivity":"5","frmChn":3})"),
              ElementsAre("frmW 1920", "frmH 1080", "sensitivity 5"));
  expectSizes(1920, 1080, 0);
}

TEST_F(Document, OnlyStringsAreAcceptedForEveryKey) {
  for (const std::string key : {"frmW", "frmH", "frmChn", "sensitivity", "lcAdap", "minBoxW", "minBoxH",
                                "maxBoxW", "maxBoxH", "lifeStatic"}) {
    for (const std::string value :
         {"1", "-1", "0.5", "true", "null", "[]", R"(["1"])", "{}", R"({"a":"1"})"}) {
      EXPECT_THAT(entries("{\"" + key + "\":" + value + "}"), IsEmpty()) << key << ' ' << value;
    }
    EXPECT_THAT(entries("{\"" + key + "\":\"1\"}"), ElementsAre(key + " 1"));
  }
}

TEST_F(Document, OtherMembersAndKeysInOtherLetterCaseAreIgnored) {
  EXPECT_THAT(
      entries(R"({"FRMW":"1","frmw":"1","frmW ":"1","sensitivity_auto":"1","MIN_MATCH_NUM":"1","roi":[],)"
              R"("ror":"x","name":"y","GHOST_SUPPRESSION":"0"})"),
      IsEmpty());
  EXPECT_THAT(entries("{}"), IsEmpty());
  expectSizes(0, 0, 0);
}

TEST_F(Document, ValuesAreCopiedUnchanged) {
  EXPECT_THAT(entries(R"({"frmW":" 640","frmH":"480 ","sensitivity":"high","lcAdap":"","minBoxW":"0,5\t6\n",)"
                      R"("maxBoxH":"\u20ac"})"),
              ElementsAre("frmW  640", "frmH 480 ", "sensitivity high", "lcAdap ", "minBoxW 0,5\t6\n",
                          "maxBoxH \xE2\x82\xAC"));
  expectSizes(640, 480, 0);
}

TEST_F(Document, SizesAreDecimalNumbersFollowedByAnything) {
  const std::vector<std::pair<std::string, int>> cases = {{"1920px", 1920},
                                                          {"+7", 7},
                                                          {"-7", -7},
                                                          {"\\t\\n 12", 12},
                                                          {"2.9", 2},
                                                          {"0x10", 0},
                                                          {"010", 10},
                                                          {"1,000", 1},
                                                          {"2147483647", 2147483647},
                                                          {"-2147483648", INT32_MIN},
                                                          {"00000000000000000000640", 640}};
  for (const auto& [text, number] : cases) {
    entries(R"({"frmH":")" + text + "\"}");
    EXPECT_EQ(detector_.frmH, number) << text;
  }
}

TEST_F(Document, AnAbsentSizeLeavesTheMemberUnchanged) {
  detector_.frmW = 7;
  detector_.frmH = 8;
  detector_.frmChn = 9;
  entries(R"({"frmH":"480"})");
  expectSizes(7, 480, 9);
}

TEST_F(Document, CommentsAreAllowed) {
  EXPECT_THAT(entries("// sizes\n{\"frmW\":\"1\", /* pixels */ \"frmH\":\"2\"} // end"),
              ElementsAre("frmW 1", "frmH 2"));
}

TEST_F(Document, ANulInsideAValueIsKept) {
  EXPECT_THAT(entries(R"({"frmW":"640\u00001"})"), ElementsAre(std::string("frmW 640\0"
                                                                           "1",
                                                                           10)));
  EXPECT_EQ(detector_.frmW, 640);
}

TEST_F(Document, ANullRootHasNoMembers) { EXPECT_THAT(entries("null"), IsEmpty()); }

TEST_F(Document, TextThatIsNotJsonIsReportedAndChangesNothing) {
  for (const std::string text :
       {"", " ", "frmW 640", "{", R"({"frmW":"1",})", R"({"frmW" "1"})", R"({"frmW":"1)"}) {
    detector_.frmW = 7;
    detector_.frmH = 8;
    detector_.frmChn = 9;
    const Printed printed = printedBy([&] { EXPECT_THAT(detector_.myjsonReader(text), IsEmpty()); });
    EXPECT_EQ(printed, (Printed{"Error: json configuration is incorrect format \n", ""})) << text;
    expectSizes(7, 8, 9);
  }
}

// ---- exceptions ---------------------------------------------------------------------------------

TEST_F(Document, ASizeWithoutANumberThrows) {
  for (const std::string key : {"frmW", "frmH", "frmChn"}) {
    for (const std::string value : {"wide", "", "   ", "-", "px640"}) {
      EXPECT_EQ(thrownBy([&] { detector_.myjsonReader("{\"" + key + "\":\"" + value + "\"}"); }),
                "std::invalid_argument: stoi")
          << key << ' ' << value;
    }
  }
}

TEST_F(Document, ASizeBeyond32BitsThrows) {
  for (const std::string key : {"frmW", "frmH", "frmChn"}) {
    for (const std::string value : {"2147483648", "-2147483649", "99999999999999999999999"}) {
      EXPECT_EQ(thrownBy([&] { detector_.myjsonReader("{\"" + key + "\":\"" + value + "\"}"); }),
                "std::out_of_range: stoi")
          << key << ' ' << value;
    }
  }
}

TEST_F(Document, SizesBeforeABadOneAreStored) {
  EXPECT_EQ(thrownBy([&] { detector_.myjsonReader(R"({"frmChn":"3","frmH":"x","frmW":"640"})"); }),
            "std::invalid_argument: stoi");
  expectSizes(640, 0, 0);
}

TEST_F(Document, TheOtherValuesAreNotConvertedHere) {
  EXPECT_THAT(entries(R"({"sensitivity":"x","minBoxW":"1e99","lifeStatic":"99999999999"})"),
              ElementsAre("sensitivity x", "minBoxW 1e99", "lifeStatic 99999999999"));
}

TEST_F(Document, ARootOfTheWrongKindThrowsAJsonException) {
  for (const std::string root : {"[]", R"([{"frmW":"1"}])", R"("frmW")", "1", "0.5", "true"}) {
    EXPECT_THROW(detector_.myjsonReader(root), Json::Exception) << root;
  }
}

}  // namespace
}  // namespace lm::test
