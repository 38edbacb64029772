#pragma once

// The kernel's queue of events, of which only timers are used: see Queues.cpp.

#include <stdint.h>
#include <time.h>

#define EVFILT_TIMER (-7)
#define EV_ADD 0x0001
#define EV_DELETE 0x0002
#define EV_ONESHOT 0x0010
#define NOTE_NSECONDS 0x00000004
#define NOTE_CRITICAL 0x00000020

struct kevent {
  uintptr_t ident;
  int16_t filter;
  uint16_t flags;
  uint32_t fflags;
  intptr_t data;
  void* udata;
};

#define EV_SET(event, ident, filter, flags, fflags, data, udata) \
  (*(event) = {ident, filter, flags, fflags, data, udata})

extern "C" {
int kqueue(void);
int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const struct timespec* limit);
}
