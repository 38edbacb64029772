#pragma once

// The machine's source of power.

#include <CoreFoundation/CoreFoundation.h>

CF_EXPORT CFTypeRef IOPSCopyPowerSourcesInfo(void) __attribute__((cf_returns_retained));
CF_EXPORT CFStringRef IOPSGetProvidingPowerSourceType(CFTypeRef snapshot);
