// What a call throws, as text: "std::out_of_range: stoi" for the exact type and its what(), or "nothing".
#pragma once

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <typeinfo>

namespace lm::test {

template <typename Call>
std::string thrownBy(Call&& call) {
  try {
    call();
    return "nothing";
  } catch (const std::exception& error) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(error).name(), nullptr, nullptr, &status), std::free);
    return std::string(name.get()) + ": " + error.what();
  }
}

inline const std::string nullText = "std::logic_error: basic_string: construction from null is not valid";

}  // namespace lm::test
