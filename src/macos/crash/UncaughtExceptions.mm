#include "macos/crash/UncaughtExceptions.h"

#include "macos/Text.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vorli::machost {

namespace {

void (*exceptionHandler)(const posix::SystemException&) = nullptr;

std::vector<std::uintptr_t> callsOf(NSException* exception) {
  std::vector<std::uintptr_t> calls;
  for (NSNumber* address in exception.callStackReturnAddresses)
    calls.push_back(static_cast<std::uintptr_t>(address.longLongValue));
  return calls;
}

void reportUncaught(NSException* exception) {
  @autoreleasepool {
    const std::string name = textOf(exception.name);
    const std::string reason = textOf(exception.reason);
    const auto calls = callsOf(exception);
    exceptionHandler({name, reason, calls});
  }
}

}  // namespace

void installExceptionHandler(void (*handler)(const posix::SystemException&)) {
  exceptionHandler = handler;
  NSSetUncaughtExceptionHandler(reportUncaught);
}

// The type of a thrown object has the plain name of its class. Names of C++ types are mangled, and no class
// has such a name.
bool isSystemException(const char* typeName) {
  @autoreleasepool {
    return NSClassFromString(stringOf(typeName)) != nil;
  }
}

}  // namespace vorli::machost
