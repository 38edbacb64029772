#include "posix/HeldSignals.h"

#include <csignal>
#include <gtest/gtest.h>
#include <pthread.h>
#include <thread>

namespace vorli::posix {
namespace {

bool isHeld(int signal) {
  sigset_t held;
  pthread_sigmask(SIG_SETMASK, nullptr, &held);
  return sigismember(&held, signal) == 1;
}

TEST(HeldSignalsTest, threadIsPassedOverBySignalsToTheProcessAndNotByItsOwnFaults) {
  bool ending = false, child = false, fault = true, bus = true, abort = true;
  std::thread thread;
  {
    const HeldSignals held;
    thread = std::thread([&] {
      ending = isHeld(SIGTERM);
      child = isHeld(SIGCHLD);
      fault = isHeld(SIGSEGV);
      bus = isHeld(SIGBUS);
      abort = isHeld(SIGABRT);
    });
  }
  thread.join();
  EXPECT_TRUE(ending && child);
  EXPECT_FALSE(fault || bus || abort);
}

TEST(HeldSignalsTest, callingThreadGetsItsMaskBack) {
  ASSERT_FALSE(isHeld(SIGTERM));
  {
    const HeldSignals held;
    EXPECT_TRUE(isHeld(SIGTERM));
  }
  EXPECT_FALSE(isHeld(SIGTERM));
}

}  // namespace
}  // namespace vorli::posix
