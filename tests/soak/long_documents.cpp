// Configuration documents of 100 MiB, in every shape that does not need a multiple of that memory, and of ten
// million values: each is accepted or refused as it should be, and its memory is released.
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <string>

#include "plugin/entry_points.h"

namespace {

constexpr std::size_t length = 100U << 20U;

std::string good(const std::string& more = "") {
  std::string text = R"({"frmW":"16","frmH":"16","frmChn":"1","roi":[{"name":"a","points":[]}])";
  return text.append(more).append("}");
}

std::string between(const char* before, const std::string& filling, const std::string& after) {
  return std::string(before).append(filling).append(after);
}

std::string repeated(const char* part, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += part;
  return text;
}

long residentMiB() {
  malloc_trim(0);
  long total = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * sysconf(_SC_PAGESIZE) >> 20;
}

std::string outcomeOf(const std::string& document) {
  std::string outcome;
  try {
    outcome = initialization(document.c_str()) ? "stands" : "refused";
  } catch (const std::exception& error) {
    outcome = error.what();
  }
  terminate();
  return outcome;
}

const std::string tooDeep = "Exceeded stackLimit in readValue().";

struct Case {
  const char* name;
  std::function<std::string()> document;
  std::string outcome;
};

const Case cases[] = {
    {"a text", [] { return good(between(R"(,"unread":")", std::string(length, 'x'), "\"")); }, "stands"},
    {"a key", [] { return good(between(",\"", std::string(length, 'x'), "\":0")); }, "stands"},
    {"a comment", [] { return between("/*", std::string(length, 'x'), "*/" + good()); }, "stands"},
    {"blanks", [] { return between("", std::string(length, ' '), good()); }, "stands"},
    {"an open text", [] { return between("{\"", std::string(length, 'x'), ""); }, "refused"},
    {"an open comment", [] { return between("/*", std::string(length, 'x'), ""); }, "refused"},
    {"brackets", [] { return std::string(length, '['); }, tooDeep},
    {"a number", [] { return good(between(",\"unread\":", std::string(length, '7'), "")); }, "refused"},
    {"a size", [] { return between(R"({"frmW":")", std::string(length, '7'), "\"}"); }, "stoi"},
    {"ten million values", [] { return good(between(",\"unread\":[", repeated("0,", 10'000'000), "0]")); },
     "stands"},
};

}  // namespace

int main() {
  std::FILE* const out = fdopen(dup(STDOUT_FILENO), "w");
  if (out == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) return 2;
  int failures = 0;
  const long before = residentMiB();
  for (const Case& one : cases) {
    const auto begin = std::chrono::steady_clock::now();
    const std::string outcome = outcomeOf(one.document());
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    const long kept = residentMiB() - before;
    const bool fine = outcome == one.outcome && kept < 16;
    failures += fine ? 0 : 1;
    std::fprintf(out, "%s%s: %s, %.1f s, %ld MiB kept\n", fine ? "" : "FAILED: ", one.name, outcome.c_str(),
                 seconds, kept);
    std::fflush(out);
  }
  return failures;
}
