#pragma once

// The list of windows, their levels, and images.

#include <CoreFoundation/CoreFoundation.h>

typedef struct CF_BRIDGED_TYPE(id) CGImage* CGImageRef;

typedef int32_t CGWindowLevel;
enum CGWindowLevelKey : int32_t {
  kCGPopUpMenuWindowLevelKey = 11,
};
typedef enum CGWindowLevelKey CGWindowLevelKey;
CF_EXPORT CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key);

typedef uint32_t CGWindowID;
enum : CGWindowID { kCGNullWindowID = 0 };
typedef uint32_t CGWindowListOption;
enum : CGWindowListOption {
  kCGWindowListOptionOnScreenOnly = 1 << 0,
  kCGWindowListExcludeDesktopElements = 1 << 4,
};

CF_EXPORT const CFStringRef kCGWindowOwnerPID;
CF_EXPORT CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow)
    __attribute__((cf_returns_retained));
