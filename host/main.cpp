#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/standard_streams.h"
#include "host/commands/command_line.h"

namespace base = lm::host::base;
namespace commands = lm::host::commands;

int main(int argc, char** argv) {
  base::occupy_standard_streams();
  try {
    const commands::Command command = commands::parse_command_line({argv + 1, argv + argc});
    if (!command.work) {
      std::fputs(command.text.c_str(), command.status == base::kDone ? stdout : stderr);
      return command.status;
    }
    base::watch_for_interrupts();
    return command.work();
  } catch (const base::Failure& failure) {
    std::fprintf(stderr, "lightmotion: %s\n", failure.what());
    return base::interrupted() != 0 ? 128 + base::interrupted() : failure.status();
  } catch (const std::bad_alloc&) {
    std::fputs("lightmotion: out of memory\n", stderr);
    return base::kTrouble;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lightmotion: %s\n", base::one_line(error.what()).c_str());
    return base::kTrouble;
  }
}
