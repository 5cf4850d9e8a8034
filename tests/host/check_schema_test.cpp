// Compares the schema for editors with `check`.
#include <gmock/gmock.h>
#include <json/json.h>

#include <cstdlib>
#include <fstream>

#include "config/check/known_keys.h"
#include "host/detector/presets/presets.h"
#include "tests/host/check_findings.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::check;
using program::Folder;

constexpr const char* kSchema = LIGHTMOTION_SCHEMAS "/configuration.schema.json";

// Prints 1 or 0 for each line: whether the document in it is valid.
constexpr const char* kJudge = R"(
import json, sys, jsonschema
judge = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))
with open(sys.argv[3], "w") as verdicts:
    for line in open(sys.argv[2]):
        print(int(judge.is_valid(json.loads(line))), file=verdicts)
)";

TEST(CheckSchema, HasTheKeysOfADocumentButThoseOfNoEffect) {
  Json::Value schema;
  std::ifstream(kSchema) >> schema;
  std::vector<std::string> keys = lm::check::documentKeys(lm::check::Reader::handle);
  std::erase_if(keys, [](const std::string& key) { return key.starts_with("maxBox"); });
  EXPECT_THAT(schema["properties"].getMemberNames(), testing::UnorderedElementsAreArray(keys));
}

TEST(CheckSchema, MarksWhatCheckMarks) {
  if (std::system("python3 -c 'import jsonschema; jsonschema.Draft202012Validator' 2>/dev/null") != 0)
    GTEST_SKIP() << "needs python3-jsonschema";
  std::vector<std::string> documents = {
      "{}",
      R"({"$schema": "x", "comment": [1], "frmW": "640", "frmH": "360", "frmChn": "3"})",
      R"({"sensitivity": "-1", "lcAdap": "5", "minBoxW": "0.02", "minBoxH": "1"})",
      R"({"minBoxW": ".5", "minBoxH": "1.0"})",
      R"({"roi": [{"name": "a", "points": [{"x": "-1", "y": "0"}, {"x": 0.5, "y": ".5"}, {"x": "1", "y": "1."}]}], "ror": []})",
      R"({"lines": [{"name": "a", "points": [{"x": "0", "y": ".5"}, {"x": 1, "y": "1"}], "direction": "left"}]})",
      R"({"lines": []})",
      R"({"lines": 7})",
      R"({"lines": [7]})",
      R"({"lines": [{}]})",
      R"({"lines": [{"points": [{"x": "0", "y": "0"}]}]})",
      R"({"lines": [{"points": [{"x": "0", "y": "0"}, {"x": "0", "y": "0"}]}]})",
      R"({"lines": [{"points": [{"x": "0", "y": "a"}, {"x": "1", "y": "0"}]}]})",
      R"({"lines": [{"points": [{"x": "0"}, {"x": "1", "y": "0"}]}]})",
      R"({"lines": [{"points": [{"x": "0", "y": "0"}, {"x": 320, "y": 0}]}]})",
      R"({"lines": [{"points": [{"x": "0", "y": "0"}, {"x": "1", "y": "0"}], "direction": "up"}]})",
      R"({"lines": [{"nam": "a", "points": [{"x": "0", "y": "0"}, {"x": "1", "y": "0"}]}]})",
      R"({"lines": [{"name": 1, "points": [{"x": "0", "y": "0"}, {"x": "1", "y": "0"}]}]})",
      R"({"sensitivity": 5, "minBoxW": 0.25, "frmW": 640, "frmChn": 3, "format": "bgr"})",
      R"({"absorb_seconds": 60, "extent": "full", "peel": 1})",
      R"({"absorb_seconds": "forever", "extent": "core", "peel": 0})",
      R"({"extent": "object", "peel": 1})",
      R"({"adapt": true})",
      R"({"adapt": false})",
      R"({"adapt": "true"})",
      R"({"adapt": 1})",
      R"({"absorb_seconds": 0})",
      R"({"absorb_seconds": "long"})",
      R"({"extent": "whole"})",
      R"({"peel": 4})",
      R"({"sensitivity": 6})",
      R"({"minBoxW": 1.5})",
      R"({"sensitivty": "5"})",
      R"({"sensitivity": "9"})",
      R"({"lcAdap": ""})",
      R"({"minBoxW": "0"})",
      R"({"minBoxW": "0.0"})",
      R"({"minBoxH": "1.5"})",
      R"({"minBoxH": "0.5x"})",
      R"({"maxBoxW": "0.5"})",
      R"({"lifeStatic": "5"})",
      R"({"lifeStatic": "-1"})",
      R"({"frmW": "0"})",
      R"({"frmChn": "2"})",
      R"({"roi": []})",
      R"({"ror": 7})",
      R"({"roi": [3]})",
      R"({"roi": [{"points": []}]})",
      R"({"roi": [{"points": [[0, 1], [1, 1], [1, 0]]}]})",
      R"({"roi": [{"points": [{"x": "0,5", "y": "0"}, {"x": "1", "y": "0"}, {"x": "1", "y": "1"}]}]})",
      R"({"roi": [{"points": [{"y": "0"}, {"x": "1", "y": "0"}, {"x": "1", "y": "1"}]}]})",
      R"({"roi": [{"nam": "a", "points": [{"x": 0, "y": 0}, {"x": "1", "y": "0"}, {"x": "1", "y": "1"}]}]})",
      R"({"roi": [{"points": [{"x": 320, "y": 0}, {"x": "1", "y": "0"}, {"x": "1", "y": "1"}]}]})"};
  for (const lm::host::detector::presets::Preset& preset : lm::host::detector::presets::all()) {
    documents.push_back(preset.document);
    std::erase(documents.back(), '\n');
  }
  const Folder folder;
  std::string lines;
  for (const std::string& document : documents) lines.append(document).append("\n");
  program::write(folder / "documents", lines);
  program::write(folder / "judge.py", kJudge);
  const std::string command = "python3 '" + (folder / "judge.py") + "' '" + kSchema + "' '" +
                              (folder / "documents") + "' '" + (folder / "verdicts") + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::vector<std::string> verdicts = program::lines(program::read(folder / "verdicts"));
  ASSERT_EQ(verdicts.size(), documents.size());
  for (std::size_t i = 0; i < documents.size(); ++i) {
    bool fine = true;
    for (const lm::host::detector::check::Finding& finding :
         lm::host::detector::check::check_document(documents[i], std::nullopt).findings)
      fine = fine && finding.severity == lm::check::Severity::note;
    EXPECT_EQ(verdicts[i], fine ? "1" : "0") << documents[i];
  }
}

}  // namespace
