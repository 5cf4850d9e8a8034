// Checks what the program writes against docs/schema.
#pragma once

#include <string>
#include <vector>

namespace schemas {

// The checks need Python's jsonschema.
bool available();

// Why one of the JSON texts is not as docs/schema/NAME.schema.json says, or which of its keys is not among
// those of host/keys.h; empty when all is well. `definition`: one of the schema's $defs, else the whole
// schema.
std::string fault(const std::string& name, const std::vector<std::string>& texts,
                  const std::string& definition = "");

}  // namespace schemas
