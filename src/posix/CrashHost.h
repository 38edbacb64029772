#pragma once

#include "posix/TextBuffer.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorli::posix {

/// One address of a stack trace.
struct StackFrame {
  std::uintptr_t address = 0;
  bool isReturnAddress = true;  // the call is just before it
};

/// An uncaught exception of the system's own kind, which is not one of C++.
struct SystemException {
  std::string_view name;
  std::string_view reason;  // empty when it has none
  /// Return addresses where it was thrown, innermost first; may be empty.
  std::span<const std::uintptr_t> calls;
};

/// System functions that are needed during a crash. The program may be in any state when they are called:
/// apart from the last two, none of them allocates, locks or calls the toolkit.
struct CrashHost {
  /// Returns the instruction that a signal interrupted, from its handler's third argument.
  std::uintptr_t (*interruptedAt)(const void* context);

  /// After a call to an address without code: moves `context` to just after that call, so that the stack can
  /// be walked, and returns that address. 0 when it is unknown.
  std::uintptr_t (*stepOutOfBadCall)(void* context);

  /// Identifies the program or library that contains the code; null for an address without code.
  const void* (*moduleOf)(std::uintptr_t address);

  /// Adds one line for each frame, without a line feed at the end. The lines are the same in every run of one
  /// build.
  void (*describe)(std::span<const StackFrame> frames, TextBuffer& text);

  /// Writes a line to the system's log, with the category "diagnostics".
  void (*writeSystemLog)(std::string_view line);

  /// Installs the handler that the system calls with each uncaught exception of its own, before it ends the
  /// process. Null, like the next function, on a system without such exceptions.
  void (*installExceptionHandler)(void (*handler)(const SystemException&)) = nullptr;

  /// True when the name, from a `std::type_info`, is that of such an exception's type.
  bool (*isSystemException)(const char* typeName) = nullptr;
};

}  // namespace vorli::posix
