#include "base/ShellWord.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(ShellWordTest, assignmentHasANameBeforeItsEqualsSign) {
  EXPECT_TRUE(isAssignment("LANG=C"));
  EXPECT_TRUE(isAssignment("A="));
  EXPECT_TRUE(isAssignment("PATH=/usr/bin:/bin"));
  EXPECT_FALSE(isAssignment("=C"));
  EXPECT_FALSE(isAssignment("LANG"));
  EXPECT_FALSE(isAssignment(""));
}

TEST(ShellWordTest, pathWithAnEqualsSignIsNoAssignment) {
  EXPECT_FALSE(isAssignment("/opt/a=b/tool"));
  EXPECT_FALSE(isAssignment("./a=b"));
}

}  // namespace
}  // namespace vorli
