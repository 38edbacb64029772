#pragma once

#include "posix/CrashHost.h"

namespace vorli::machost {

/// Has the system call `handler` for each uncaught NSException, on the thread that threw it. The system calls
/// `std::abort` afterwards. Main thread; call it once.
void installExceptionHandler(void (*handler)(const posix::SystemException&));

/// True when the name, from a `std::type_info`, is that of an Objective-C object's class. Any thread; not
/// safe in a signal handler.
bool isSystemException(const char* typeName);

}  // namespace vorli::machost
