// A C++ host that uses only the entry points: it catches their exceptions by the types of the standard
// library, with every way of loading, and continues. Its own logging function throws on request.
//
// usage: exceptions LIBRARY
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "plugin/entry_points.h"
#include "tests/hosts/modes.h"

namespace {

bool logThrows = false;
int logged = 0;

void require(bool condition, const std::string& what) {
  if (condition) return;
  std::fprintf(stderr, "failed: %s\n", what.c_str());
  std::exit(1);
}

template <class Function>
Function* find(void* library, const char* name) {
  auto* const function = reinterpret_cast<Function*>(dlsym(library, name));
  require(function != nullptr, name);
  return function;
}

template <class Exception, class Call>
void expect(const std::string& text, const Call& call) {
  try {
    call();
  } catch (const Exception& error) {
    require(text.empty() || error.what() == text, text + ", not " + error.what());
    return;
  } catch (...) {
    require(false, text + " of another type");
  }
  require(false, "nothing thrown for " + text);
}

std::string document(const std::string& more, const std::string& roi = R"([{"points":[]}])") {
  return R"({"frmW":"8","frmH":"8","frmChn":"1","roi":)" + roi + more + "}";
}

void host(void* library) {
  const auto start = [begin = find<decltype(initialization)>(library, "initialization")](
                         const std::string& text) { return begin(text.c_str()); };
  auto* const begin = find<decltype(initialization)>(library, "initialization");
  auto* const frame = find<decltype(frameProc)>(library, "frameProc");
  auto* const end = find<decltype(terminate)>(library, "terminate");
  const unsigned char pixels[64] = {};
  int length = -1;

  expect<std::logic_error>("", [&] { begin(nullptr); });
  expect<std::invalid_argument>("stoi", [&] { start(R"({"frmW":"wide"})"); });
  expect<std::out_of_range>("stoi", [&] { start(R"({"frmW":"99999999999"})"); });
  expect<std::invalid_argument>("stof", [&] { start(document(R"(,"minBoxW":"wide")")); });
  expect<std::out_of_range>("stof", [&] { start(document(R"(,"minBoxW":"1e99")")); });
  expect<std::exception>("", [&] { start(document("", "[1]")); });
  expect<std::exception>("", [&] { start(std::string(2000, '[')); });
  logThrows = true;
  expect<std::runtime_error>("the log is full", [&] { start(document(R"(,"sensitivity":"-1")")); });
  logThrows = false;
  require(frame(pixels, "1", &length) == 0 && length == -1, "a detector is left behind");

  require(start(document(R"(,"sensitivity":"-1")")), "no detector from a good document");
  expect<std::logic_error>("", [&] { frame(pixels, nullptr, &length); });
  expect<std::invalid_argument>("stoll", [&] { frame(pixels, "soon", &length); });
  expect<std::out_of_range>("stoll", [&] { frame(pixels, "99999999999999999999", &length); });
  require(frame(pixels, "1", &length) == 1 && length == 0, "the detector does not go on");
  require(end() == 1, "terminate");
}

}  // namespace

extern "C" __attribute__((format(printf, 3, 4))) void log_File_Debug_s(const char* /*path*/, int /*level*/,
                                                                       const char* /*format*/, ...) {
  ++logged;
  if (logThrows) throw std::runtime_error("the log is full");
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  for (const mode& way : modes) {
    void* const library = dlopen(argv[1], way.flags);
    require(library != nullptr, way.name);
    logged = 0;
    host(library);
    require(logged == 2, std::string("the log was not called twice: ") + way.name);
    dlclose(library);
  }
  return 0;
}
