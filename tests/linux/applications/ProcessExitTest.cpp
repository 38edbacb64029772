#include "linux/applications/ProcessExit.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

using ports::QuitAnswer;

TEST(ProcessExitTest, aProcessIsAskedOnceAndGoneAfterwards) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    for (;;) pause();
  }
  const ProcessExit process(child, [] {});
  ASSERT_TRUE(process.isHeld());
  EXPECT_EQ(process.answerToTermination(), QuitAnswer::asked);
  EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);  // the question alone sends nothing
  EXPECT_EQ(process.requestTermination(), QuitAnswer::asked);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGTERM);
  EXPECT_EQ(process.answerToTermination(), QuitAnswer::gone);
  EXPECT_EQ(process.requestTermination(), QuitAnswer::gone);

  const ProcessExit late(child, [] {});
  EXPECT_FALSE(late.isHeld());
  EXPECT_EQ(late.requestTermination(), QuitAnswer::gone);
}

}  // namespace
}  // namespace vorli::linuxhost
