#pragma once

#include <cstdint>
#include <mach-o/loader.h>

namespace vorli::macfake {

/// Behaves as the loader when it has put a program into memory.
void addImage(const mach_header_64& header, std::uintptr_t slide);

}  // namespace vorli::macfake
