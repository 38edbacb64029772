#pragma once

// The language's own types, as the compiler knows them on a Mac with an Intel processor.

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

typedef signed char BOOL;
#define YES __objc_yes
#define NO __objc_no

typedef struct objc_class* Class;
struct objc_object {
  Class isa;
};
typedef struct objc_object* id;
typedef struct objc_selector* SEL;
typedef void (*IMP)(void);
typedef long NSInteger;
typedef unsigned long NSUInteger;

#define nil nullptr
#define Nil nullptr
