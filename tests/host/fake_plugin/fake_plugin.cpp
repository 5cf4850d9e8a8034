// A plug-in for the host's tests: no detector, but the same four entry points. What a document has in its
// "comment", which no program minds, tells it how to behave:
//   refuse        initialization prints a line on standard output and returns false
//   refuse mute   ... returns false without a word
//   throw         ... throws std::invalid_argument("stoi"), as the conversions of a real plug-in do
//   chatter       ... prints on standard output and accepts
//   log           ... writes to the host's log and accepts
//   frame throws  the fifth frame throws
//   frame dies    ... ends the process
//   frame waits   ... waits for a signal
// It reports one box on every frame but the first and every tenth. The numbers of the box are texts that no
// conversion to and from a double would leave as they are.
#include <json/json.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>

#include "plugin/entry_points.h"

extern "C" void log_File_Debug_s(const char* path, int level, const char* format, ...)
    __attribute__((weak, format(printf, 3, 4)));

namespace {

bool standing = false;
int frames = 0;
std::string behaviour;
std::string configuration;
std::string result;

}  // namespace

bool initialization(const char* config) {
  Json::Value document;
  std::istringstream(config) >> document;
  configuration = config;
  behaviour = document["comment"].asString();
  frames = 0;
  if (behaviour == "refuse") std::printf("Error: this document is refused \n");
  if (behaviour == "chatter") std::printf("a line that is no result\n");
  if (behaviour == "throw") throw std::invalid_argument("stoi");
  if (behaviour == "log" && log_File_Debug_s != nullptr)
    log_File_Debug_s("a.log", 7, "%s sensitivity", "automatic");
  standing = !behaviour.starts_with("refuse");
  return standing;
}

int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  if (!standing) return 0;
  if (frames == 0) std::fprintf(stderr, "W, H, Pixels = a line for developers\n");
  if (behaviour == "frame dies" && frames == 4) std::raise(SIGKILL);
  if (behaviour == "frame waits" && frames == 4) pause();
  if (behaviour == "frame throws" && frames == 4) throw std::out_of_range("stoll");
  result.clear();
  if (frames % 10 != 0) {
    result = R"({"config":)" + configuration + R"(,"object":[{"height":0.30000001192092896,"inRoi":[],)" +
             R"("width":0.10000000000000000001,"x":0.500,"y":2.5e-1}],"pixel":)" + std::to_string(frame[0]) +
             R"(,"timestamp":")" + timestamp + "\"}\n";
  }
  ++frames;
  *resultLen = static_cast<int>(result.size());
  return 1;
}

int getRes(char* out) {
  if (!standing) return 0;
  std::memcpy(out, result.c_str(), result.size() + 1);
  return 1;
}

int terminate() {
  standing = false;
  return 1;
}
