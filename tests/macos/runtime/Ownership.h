#pragma once

#include <objc/objc.h>

// The functions that the compiler calls for ownership and that this runtime's own parts call as well.
extern "C" {
id objc_retain(id object);
void objc_release(id object);
id objc_autorelease(id object);
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* token);
}
