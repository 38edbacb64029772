#include "posix/HeldSignals.h"

#include <initializer_list>
#include <pthread.h>

namespace vorli::posix {

HeldSignals::HeldSignals() {
  sigset_t held;
  sigfillset(&held);
  // If blocked, these would end the process without running a handler.
  for (const int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGABRT, SIGSYS}) sigdelset(&held, fault);
  pthread_sigmask(SIG_SETMASK, &held, &before_);
}

HeldSignals::~HeldSignals() {
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace vorli::posix
