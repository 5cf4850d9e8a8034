// The program's own gettimeofday: the time that a test sets, so that the wall-clock frame rate can be tested
// exactly.
#pragma once

#include <sys/time.h>

timeval scriptedTime();
void setScriptedTime(timeval time);
