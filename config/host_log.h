// The optional logging function of the host. A weak reference: null in a host that has none, so callers test
// it first.
#pragma once

// `path`: the log file; `level`: interpreted by the host; `format` and the rest: as for printf.
extern "C" void log_File_Debug_s(const char* path, int level, const char* format, ...)
    __attribute__((weak, format(printf, 3, 4)));
