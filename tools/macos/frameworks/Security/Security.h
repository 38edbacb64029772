#pragma once

// The part of Security that the macOS daemon uses: what a program's own signature says.

#include <CoreFoundation/CoreFoundation.h>

typedef struct CF_BRIDGED_TYPE(id) __SecCode* SecCodeRef;
typedef const struct CF_BRIDGED_TYPE(id) __SecCode* SecStaticCodeRef;

typedef uint32_t SecCSFlags;
enum : SecCSFlags { kSecCSDefaultFlags = 0 };
enum : SecCSFlags { kSecCSSigningInformation = 1 << 1 };
enum : OSStatus { errSecSuccess = 0 };

CF_EXPORT const CFStringRef kSecCodeInfoTeamIdentifier;
CF_EXPORT OSStatus SecCodeCopySelf(SecCSFlags flags, SecCodeRef* self __attribute__((cf_returns_retained)));
CF_EXPORT OSStatus SecCodeCopySigningInformation(SecStaticCodeRef code, SecCSFlags flags,
                                                 CFDictionaryRef* information
                                                 __attribute__((cf_returns_retained)));
