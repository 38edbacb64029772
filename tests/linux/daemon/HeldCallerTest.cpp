#include "linux/daemon/HeldCaller.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <systemd/sd-login.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

/// The user of this session. With sudo, root is in the session of another user.
uid_t sessionUser() {
  uid_t user = ::getuid();
  ::sd_pid_get_owner_uid(0, &user);
  return user;
}

/// A process of that user that waits until it is ended.
class Child {
 public:
  Child() {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const posix::FileDescriptor reading(ends[0]);
    posix::FileDescriptor writing(ends[1]);
    pid_ = ::fork();
    if (pid_ == 0) {
      const uid_t user = sessionUser();
      if (::setresuid(user, user, user) != 0 || ::write(writing.get(), "", 1) != 1) ::_exit(1);
      for (;;) ::pause();
    }
    writing = posix::FileDescriptor();  // otherwise a child that fails would be waited for
    char byte;
    EXPECT_EQ(::read(reading.get(), &byte, 1), 1);
  }
  ~Child() { end(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t pid() const { return pid_; }
  posix::FileDescriptor handle() const {
    return posix::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)));
  }
  void end() {
    if (hasEnded_) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    hasEnded_ = true;
  }

 private:
  pid_t pid_;
  bool hasEnded_ = false;
};

TEST(HeldCallerTest, aProcessOfTheUserIsHeldUntilItEnds) {
  Child child;
  const auto held = holdCaller(child.pid(), posix::FileDescriptor(), sessionUser());
  ASSERT_TRUE(held);
  EXPECT_TRUE(held->isThere());
  child.end();
  EXPECT_FALSE(held->isThere());
}

TEST(HeldCallerTest, theHandleFromTheBusIsHeld) {
  Child child;
  const auto held = holdCaller(child.pid(), child.handle(), sessionUser());
  ASSERT_TRUE(held);
  EXPECT_TRUE(held->isThere());
  child.end();
  EXPECT_FALSE(held->isThere());
}

// Another process of the same user takes the part of the one that now has the pid of the ended process.
TEST(HeldCallerTest, anEndedCallerIsRefusedThoughItsNumberIsReused) {
  Child connected, heir;
  auto handle = connected.handle();
  connected.end();
  EXPECT_TRUE(holdCaller(heir.pid(), posix::FileDescriptor(), sessionUser()));
  EXPECT_FALSE(holdCaller(heir.pid(), std::move(handle), sessionUser()));
}

TEST(HeldCallerTest, anotherUsersProcessIsRefused) {
  Child child;
  EXPECT_FALSE(holdCaller(child.pid(), posix::FileDescriptor(), sessionUser() + 1));
  EXPECT_FALSE(holdCaller(child.pid(), child.handle(), sessionUser() + 1));
}

TEST(HeldCallerTest, anUnusedProcessNumberIsRefused) {
  Child child;
  child.end();
  EXPECT_FALSE(holdCaller(child.pid(), posix::FileDescriptor(), sessionUser()));
  EXPECT_FALSE(holdCaller(0, posix::FileDescriptor(), sessionUser()));
  EXPECT_FALSE(holdCaller(-1, posix::FileDescriptor(), sessionUser()));
}

}  // namespace
}  // namespace vorli::linuxhost
