#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "host/failure.h"
#include "host/interrupt.h"
#include "host/options.h"
#include "host/standard_streams.h"

int main(int argc, char** argv) {
  using namespace lm::host;
  occupy_standard_streams();
  try {
    const Command command = parse_command_line({argv + 1, argv + argc});
    if (!command.work) {
      std::fputs(command.text.c_str(), command.status == kDone ? stdout : stderr);
      return command.status;
    }
    watch_for_interrupts();
    return command.work();
  } catch (const Failure& failure) {
    std::fprintf(stderr, "lightmotion: %s\n", failure.what());
    return interrupted() != 0 ? 128 + interrupted() : failure.status();
  } catch (const std::bad_alloc&) {
    std::fputs("lightmotion: out of memory\n", stderr);
    return kTrouble;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lightmotion: %s\n", one_line(error.what()).c_str());
    return kTrouble;
  }
}
