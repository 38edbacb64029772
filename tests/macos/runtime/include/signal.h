#pragma once

// The signals' numbers of a Mac. Signals that the code under test sends are only recorded, see Files.h.

#include_next <signal.h>

#undef SIGCONT
#define SIGCONT 19

extern "C" int vorli_kill(pid_t pid, int signal);
#define kill vorli_kill
