#pragma once

// Objects of the system's C libraries, which the compiler counts like any other.

#if defined(__OBJC__)
#import <objc/NSObject.h>
#define OS_OBJECT_DECL(name) \
  @protocol OS_              \
  ##name<NSObject> @end      \
  typedef NSObject<OS_##name>* name##_t
#else
#define OS_OBJECT_DECL(name) typedef struct name##_s* name##_t
#endif
