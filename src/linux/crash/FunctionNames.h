#pragma once

#include "posix/TextBuffer.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vorli::linuxhost {

/// A search for the function that contains an address. Addresses are those of the file.
struct FunctionQuery {
  std::uint64_t address = 0;
  bool isFound = false;
  std::uint64_t begin = 0;
  std::uint32_t nameOffset = 0;
};

/// The functions of an open ELF file, from its full symbol table, or from the dynamic one when the full table
/// was stripped. Reads the file in pieces; allocates nothing.
class FunctionNames {
 public:
  explicit FunctionNames(int file) : file_(file) {}

  /// Fills in the queries whose function is found in the file. Finds nothing in a file that is not a 64-bit
  /// ELF file.
  void find(std::span<FunctionQuery* const> queries);

  /// Adds the linker's name of a found function, cut off after 120 bytes.
  void addName(const FunctionQuery& query, posix::TextBuffer& text) const;

 private:
  int file_;
  std::uint64_t names_ = 0;  // offset of the names in the file
};

}  // namespace vorli::linuxhost
