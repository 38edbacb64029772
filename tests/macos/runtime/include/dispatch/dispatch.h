#pragma once

// The part of libdispatch that the macOS back end uses. Time is the fake system's, see Dispatch.h.

#include <os/object.h>
#include <stdint.h>

OS_OBJECT_DECL(dispatch_queue);
OS_OBJECT_DECL(dispatch_group);
OS_OBJECT_DECL(dispatch_source);

typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
typedef const struct dispatch_source_type_s* dispatch_source_type_t;

#define NSEC_PER_SEC 1000000000ull
#define DISPATCH_TIME_NOW 0ull
#define DISPATCH_TIME_FOREVER (~0ull)
#define DISPATCH_SOURCE_TYPE_TIMER (&_dispatch_source_type_timer)

enum : unsigned { QOS_CLASS_UTILITY = 0x11, QOS_CLASS_USER_INITIATED = 0x19 };

extern "C" {
extern const struct dispatch_source_type_s _dispatch_source_type_timer;

dispatch_time_t dispatch_time(dispatch_time_t base, int64_t nanoseconds);
dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_get_global_queue(intptr_t quality, uintptr_t flags);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);

dispatch_group_t dispatch_group_create(void) __attribute__((ns_returns_retained));
void dispatch_group_enter(dispatch_group_t group);
void dispatch_group_leave(dispatch_group_t group);
intptr_t dispatch_group_wait(dispatch_group_t group, dispatch_time_t limit);
void dispatch_group_async(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block);

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, uintptr_t mask,
                                         dispatch_queue_t queue) __attribute__((ns_returns_retained));
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler);
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval,
                               uint64_t leeway);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_resume(dispatch_source_t source);
}
