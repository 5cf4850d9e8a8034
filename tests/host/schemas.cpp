#include "tests/host/schemas.h"

#include <cstdlib>

#include "host/base/json_text.h"
#include "host/base/keys.h"
#include "tests/host/program.h"

namespace schemas {
namespace {

constexpr const char* kValidate = R"(
import json, sys, jsonschema
schema = json.load(open(sys.argv[1]))
if sys.argv[4]:
    schema = {"$ref": "#/$defs/" + sys.argv[4], "$defs": schema["$defs"]}
validator = jsonschema.Draft202012Validator(schema)
with open(sys.argv[3], "w") as faults:
    for text in open(sys.argv[2]).read().split("\0")[:-1]:
        for error in validator.iter_errors(json.loads(text)):
            print(error, file=faults)
)";

std::string unknown_key(const Json::Value& value) {
  if (value.isArray()) {
    for (const Json::Value& item : value) {
      if (const std::string key = unknown_key(item); !key.empty()) return key;
    }
  }
  if (!value.isObject()) return "";
  for (const std::string& name : value.getMemberNames()) {
    const std::size_t place = lm::host::base::place_of(name);
    if (place == lm::host::base::keys().size()) return "no key of the program: " + name;
    if (lm::host::base::keys()[place].decimals == lm::host::base::kVerbatim) continue;
    if (const std::string key = unknown_key(value[name]); !key.empty()) return key;
  }
  return "";
}

}  // namespace

bool available() {
  return std::system("python3 -c 'import jsonschema; jsonschema.Draft202012Validator' 2>/dev/null") == 0;
}

std::string fault(const std::string& name, const std::vector<std::string>& texts,
                  const std::string& definition) {
  if (texts.empty()) return "nothing to check";
  const program::Folder folder;
  std::string all;
  for (const std::string& text : texts) {
    all.append(text).append(1, '\0');
    if (const std::string key = unknown_key(lm::host::base::parse_json(text)); !key.empty()) return key;
  }
  program::write(folder / "texts", all);
  program::write(folder / "validate.py", kValidate);
  const std::string command = "python3 '" + (folder / "validate.py") + "' '" LIGHTMOTION_SCHEMAS "/" + name +
                              ".schema.json' '" + (folder / "texts") + "' '" + (folder / "faults") + "' '" +
                              definition + "'";
  if (std::system(command.c_str()) != 0) return "the check itself failed";
  return program::read(folder / "faults");
}

}  // namespace schemas
