#pragma once

#include <stdint.h>

typedef uint8_t UInt8;
typedef int16_t SInt16;
typedef uint16_t UInt16;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef uint64_t UInt64;
typedef float Float32;
typedef double Float64;
typedef SInt32 OSStatus;
typedef UInt32 OSType;
typedef UInt32 OptionBits;
typedef unsigned char Boolean;
typedef unsigned long ItemCount;

enum : OSStatus { noErr = 0 };
