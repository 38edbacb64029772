// Gives every thread that the process starts, including those of libraries, an alternate stack for signal
// handlers. Link this file into the program only, never into a library: it affects all threads of whatever it
// is linked into.

#include "posix/AlternateStack.h"

#include <cerrno>
#include <dlfcn.h>
#include <memory>
#include <new>
#include <pthread.h>

namespace vorli::linuxhost {

namespace {

using Routine = void* (*)(void*);
using Create = int (*)(pthread_t*, const pthread_attr_t*, Routine, void*);

struct Start {
  Routine routine;
  void* argument;
};

// The stack is also released when the thread is cancelled or calls pthread_exit, because both unwind it.
void* runWithAlternateStack(void* given) {
  const Start start = *std::unique_ptr<Start>(static_cast<Start*>(given));
  const posix::AlternateStack stack;
  return start.routine(start.argument);
}

Create systemsCreate() {
  static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
  return create;
}

}  // namespace

}  // namespace vorli::linuxhost

// Overrides the system's function: the loader finds this one first, for the program and for every library.
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*routine)(void*),
                                                                     void* argument) noexcept {
  using namespace vorli::linuxhost;
  auto* start = new (std::nothrow) Start{routine, argument};
  if (!start) return EAGAIN;
  const int failure = systemsCreate()(thread, attributes, runWithAlternateStack, start);
  if (failure != 0) delete start;
  return failure;
}
