#pragma once

#include <stdint.h>

extern "C" uintptr_t vm_kernel_page_size;
