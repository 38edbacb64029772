#pragma once

#include <mach-o/loader.h>
#include <stdint.h>

/// Keeps the function, which tests call with programs of their own: see Images.h.
extern "C" void _dyld_register_func_for_add_image(void (*added)(const struct mach_header* header,
                                                                intptr_t slide));
