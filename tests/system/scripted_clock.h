// A gettimeofday that returns the time set by a test, so that the wall-clock frame rate can be tested
// exactly.
#pragma once

#include <sys/time.h>

timeval scriptedTime();
void setScriptedTime(timeval time);
