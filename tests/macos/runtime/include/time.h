#pragma once

#include <stdint.h>
#include_next <time.h>

#define CLOCK_UPTIME_RAW 8
extern "C" uint64_t clock_gettime_nsec_np(clockid_t clock);
