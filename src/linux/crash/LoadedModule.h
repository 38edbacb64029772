#pragma once

#include <cstdint>
#include <string_view>

namespace vorli::linuxhost {

/// The program itself or a library that it has loaded, as the loader knows it. Looking one up takes no lock
/// and allocates nothing.
struct LoadedModule {
  const void* id = nullptr;  // null for none
  std::uintptr_t bias = 0;   // offset from the addresses in the file to those in memory
  std::uintptr_t begin = 0;  // address of the mapped file
  std::string_view path;     // empty for the program itself; ends in a NUL

  explicit operator bool() const { return id != nullptr; }
};

LoadedModule moduleAt(std::uintptr_t address);

}  // namespace vorli::linuxhost
