#include "linux/session/UserFolders.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

struct UserFoldersTest : testing::Test {
  ~UserFoldersTest() override {
    unsetenv("XDG_STATE_HOME");
    unsetenv("XDG_DATA_HOME");
  }
};

TEST_F(UserFoldersTest, variablesChooseTheFolders) {
  setenv("XDG_STATE_HOME", "/state/", 1);
  setenv("XDG_DATA_HOME", "/data", 1);
  EXPECT_EQ(logFolder("/home/kim"), "/state/Vorli/Logs");
  EXPECT_EQ(crashReportFolder("/home/kim"), "/data/Vorli/CrashReports");
}

TEST_F(UserFoldersTest, withoutVariablesTheStandardFoldersAreUsed) {
  unsetenv("XDG_STATE_HOME");
  setenv("XDG_DATA_HOME", "relative", 1);
  EXPECT_EQ(logFolder("/home/kim"), "/home/kim/.local/state/Vorli/Logs");
  EXPECT_EQ(crashReportFolder("/home/kim"), "/home/kim/.local/share/Vorli/CrashReports");
}

}  // namespace
}  // namespace vorli::linuxhost
