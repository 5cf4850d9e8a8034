// Reading a whole configuration document: settings, regions and messages. Needs no detector.
#include "config/document.h"

#include <gmock/gmock.h>

#include <json/json.h>

#include "tests/support/capture.h"
#include "tests/support/thrown.h"

namespace lm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string sizes = R"("frmW":"640","frmH":"480","frmChn":"3")";
const std::string triangle =
    R"({"name":"yard","points":[{"x":"0","y":"0"},{"x":"0.5","y":"0"},{"x":"0","y":1}]})";

class WholeDocument : public ::testing::Test {
 protected:
  // Nothing is printed: the messages are returned.
  bool read(const std::string& text) {
    bool accepted = false;
    EXPECT_EQ(printedBy([&] { accepted = readConfiguration(text, size_, configuration_); }), Printed{});
    return accepted;
  }

  void expectRefused(const std::string& text, const std::string& messages) {
    EXPECT_FALSE(read(text)) << text;
    EXPECT_EQ(configuration_.messages, messages);
    EXPECT_THAT(configuration_.include, IsEmpty());
  }

  lm::FrameSize size_;
  Configuration configuration_;
};

TEST_F(WholeDocument, GivesSizesParametersAndRegions) {
  EXPECT_TRUE(
      read("{" + sizes + R"(,"lifeStatic":"0","roi":[)" + triangle + R"(],"ror":[{"name":"tree"}]})"));
  EXPECT_EQ(size_.frmW, 640);
  EXPECT_EQ(size_.frmH, 480);
  EXPECT_EQ(size_.frmChn, 3);
  EXPECT_THAT(configuration_.parameters, ElementsAre("frmW 640", "frmH 480", "frmChn 3", "lifeStatic 0"));
  ASSERT_EQ(configuration_.include.size(), 1U);
  EXPECT_EQ(configuration_.include[0].name, "yard");
  ASSERT_EQ(configuration_.include[0].points.size(), 3U);
  EXPECT_EQ(configuration_.include[0].points[1].x, 320);
  EXPECT_EQ(configuration_.include[0].points[2].y, 480);
  ASSERT_EQ(configuration_.exclude.size(), 1U);
  EXPECT_EQ(configuration_.exclude[0].name, "tree");
  EXPECT_EQ(configuration_.messages, "");
}

TEST_F(WholeDocument, ThatIsNotJsonIsRefusedWithTwoMessages) {
  expectRefused("{",
                "Error: json configuration is incorrect format \n"
                "Error: invalid parameter[frmChn:0,frmW:0,frmH:0] \n");
}

TEST_F(WholeDocument, WithASizeBelow1IsRefused) {
  expectRefused(R"({"frmW":"7","frmH":"-8","frmChn":"3","roi":[)" + triangle + "]}",
                "Error: invalid parameter[frmChn:3,frmW:7,frmH:-8] \n");
  EXPECT_EQ(size_.frmH, -8);
}

TEST_F(WholeDocument, WithoutARegionOfInterestIsRefused) {
  for (const std::string& roi :
       std::vector<std::string>{"", R"(,"roi":[])", R"(,"roi":{})", R"(,"ror":[)" + triangle + "]"}) {
    expectRefused("{" + sizes + roi + "}", "Error: region of interest is empty! \n");
  }
}

TEST_F(WholeDocument, ReplacesWhatWasReadBeforeAndKeepsSizesThatAreAbsent) {
  ASSERT_TRUE(read("{" + sizes + R"(,"roi":[)" + triangle + "]}"));
  EXPECT_TRUE(read(R"({"frmH":"100","roi":[)" + triangle + "]}"));
  EXPECT_THAT(configuration_.parameters, ElementsAre("frmH 100"));
  EXPECT_EQ(size_.frmW, 640);
  EXPECT_EQ(configuration_.include.at(0).points.at(2).y, 100);
  expectRefused("{",
                "Error: json configuration is incorrect format \n"
                "Error: region of interest is empty! \n");
}

TEST_F(WholeDocument, StoresTheSizesBeforeOneThatIsNotANumber) {
  EXPECT_EQ(thrownBy([&] { read(R"({"frmW":"640","frmH":"x","frmChn":"3"})"); }),
            "std::invalid_argument: stoi");
  EXPECT_EQ(size_.frmW, 640);
  EXPECT_EQ(size_.frmChn, 0);
}

TEST_F(WholeDocument, PropagatesExceptionsFromRegions) {
  EXPECT_EQ(thrownBy([&] { read("{" + sizes + R"(,"ror":[{"points":[{"x":"left","y":"0"}]}]})"); }),
            "std::invalid_argument: stof");
  EXPECT_THROW(read("[]"), Json::Exception);
}

}  // namespace
}  // namespace lm::test
