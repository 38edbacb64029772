#pragma once

// The part of Core Foundation that the macOS back end uses. Like all headers here, it stands in for the
// system's own where there is no Mac: tools/check_frameworks compares each declaration with what is known
// about the system.

#include <MacTypes.h>
#include <objc/objc.h>
#include <os/availability.h>

#define CF_EXPORT extern "C"
#define CF_BRIDGED_TYPE(type) __attribute__((objc_bridge(type)))

typedef const void* CFTypeRef;
typedef unsigned long CFTypeID;
typedef const struct CF_BRIDGED_TYPE(NSString) __CFString* CFStringRef;
typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFNumber* CFNumberRef;
typedef const struct CF_BRIDGED_TYPE(NSArray) __CFArray* CFArrayRef;
typedef const struct CF_BRIDGED_TYPE(NSDictionary) __CFDictionary* CFDictionaryRef;

typedef double CGFloat;
struct CGPoint {
  CGFloat x;
  CGFloat y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
  CGFloat width;
  CGFloat height;
};
typedef struct CGSize CGSize;
struct CGRect {
  CGPoint origin;
  CGSize size;
};
typedef struct CGRect CGRect;

CF_EXPORT void CFRelease(CFTypeRef cf);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef cf);
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);

typedef struct CF_BRIDGED_TYPE(id) __CFRunLoop* CFRunLoopRef;
CF_EXPORT CFRunLoopRef CFRunLoopGetMain(void);
CF_EXPORT void CFRunLoopRun(void);
CF_EXPORT void CFRunLoopStop(CFRunLoopRef loop);
