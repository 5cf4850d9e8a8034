// Checks the program's output against docs/schema.
#pragma once

#include <string>
#include <vector>

namespace schemas {

// The checks need Python's jsonschema.
bool available();

// Why one of the JSON texts does not match docs/schema/NAME.schema.json, or which of its keys is not in
// host/base/keys.h; empty if all match. `definition`: one of the schema's $defs; otherwise the whole schema.
std::string fault(const std::string& name, const std::vector<std::string>& texts,
                  const std::string& definition = "");

}  // namespace schemas
