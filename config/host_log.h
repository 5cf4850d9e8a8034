// The logging function that the host may supply. A weak reference: it is null in a host that has none, so
// callers test it first.
#pragma once

// `path`: the log file; `level`: passed through for the host to interpret;
// `format` and what follows: as for printf.
extern "C" void log_File_Debug_s(const char* path, int level, const char* format, ...)
    __attribute__((weak, format(printf, 3, 4)));
