// A fake plug-in for the tests: no detector, but the same four entry points. The document's "comment", which
// the program ignores, determines its behaviour:
//   refuse        initialization prints a line on standard output and returns false
//   refuse mute   ... returns false without a message
//   throw         ... throws std::invalid_argument("stoi"), as conversions in a real plug-in do
//   chatter       ... prints on standard output and accepts
//   log           ... writes to the host's log and accepts
//   pixel         the first byte of the frame is the height of the box, in 256ths of the frame
//   border        the box extends beyond the right and bottom border, as the real plug-in's boxes do
//   frame throws  the fifth frame throws
//   frame dies    ... ends the process
//   frame waits   ... waits for a signal
// It reports one box on every frame except the first and every tenth. If the environment variable
// LIGHTMOTION_FAKE_CONFIGURATION names a file, the document is written there.
#include <json/json.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "plugin/entry_points.h"

extern "C" void log_File_Debug_s(const char* path, int level, const char* format, ...)
    __attribute__((weak, format(printf, 3, 4)));

namespace {

bool running = false;
int frames = 0;
std::string behaviour;
std::string result;

}  // namespace

bool initialization(const char* config) {
  Json::Value document;
  std::istringstream(config) >> document;
  if (const char* file = std::getenv("LIGHTMOTION_FAKE_CONFIGURATION")) std::ofstream(file) << config;
  behaviour = document["comment"].asString();
  frames = 0;
  if (behaviour == "refuse") std::printf("Error: this document is refused \n");
  if (behaviour == "chatter") std::printf("a line that is no result\n");
  if (behaviour == "throw") throw std::invalid_argument("stoi");
  if (behaviour == "log" && log_File_Debug_s != nullptr)
    log_File_Debug_s("a.log", 7, "%s sensitivity", "automatic");
  running = !behaviour.starts_with("refuse");
  return running;
}

int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen) {
  if (!running) return 0;
  if (frames == 0) std::fprintf(stderr, "W, H, Pixels = a line for developers\n");
  if (behaviour == "frame dies" && frames == 4) std::raise(SIGKILL);
  if (behaviour == "frame waits" && frames == 4) pause();
  if (behaviour == "frame throws" && frames == 4) throw std::out_of_range("stoll");
  result.clear();
  if (frames % 10 != 0) {
    const std::string height =
        behaviour == "pixel" ? std::to_string(frame[0] / 256.0) : "0.30000001192092896";
    const std::string place =
        behaviour == "border" ? R"("width":1,"x":0.9,"y":0.75)" : R"("width":0.1,"x":0.5,"y":0.25)";
    result = R"({"object":[{"height":)" + height + R"(,"inRoi":[],)" + place + R"(}],"timestamp":")" +
             timestamp + "\"}\n";
  }
  ++frames;
  *resultLen = static_cast<int>(result.size());
  return 1;
}

int getRes(char* out) {
  if (!running) return 0;
  std::memcpy(out, result.c_str(), result.size() + 1);
  return 1;
}

int terminate() {
  running = false;
  return 1;
}
