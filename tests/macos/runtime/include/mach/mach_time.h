#pragma once

#include <mach/mach.h>

struct mach_timebase_info {
  uint32_t numer;
  uint32_t denom;
};
typedef struct mach_timebase_info mach_timebase_info_data_t;

extern "C" kern_return_t mach_timebase_info(mach_timebase_info_data_t* info);
