#pragma once

#include <cstdint>
#include <string_view>

namespace vorli::machost {

/// A program or library in memory.
struct LoadedImage {
  const void* header = nullptr;  // null: none
  std::uintptr_t begin = 0;      // start of its code
  std::uintptr_t end = 0;
  std::uintptr_t slide = 0;  // offset from the addresses in its file to those in memory
  std::string_view name;     // last part of its path
};

/// The function that contains an address; empty name: unknown.
struct NearestFunction {
  std::string_view name;  // as the linker spells it
  std::uintptr_t offset = 0;
};

// The system's own search takes a lock that a crashed thread may hold, so a table is kept from the start.

/// Starts to keep the table. Call it once, at the start.
void rememberLoadedImages();

/// Safe in a signal handler, like `functionAt`. Images that were unloaded are still found.
LoadedImage imageAt(std::uintptr_t address);
NearestFunction functionAt(const LoadedImage& image, std::uintptr_t address);

}  // namespace vorli::machost
