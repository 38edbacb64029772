#include "linux/startup/LaunchControl.h"
#include "tests/linux/RecordedTree.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace vorli::linuxhost {
namespace {

/// Replaces the service manager's tool by a script that writes down its arguments.
struct LaunchControlTest : testing::Test {
  LaunchControlTest() : before(std::getenv("PATH")) {
    setTool(
        "case $* in *is-enabled*on.service) echo enabled;; *is-enabled*nightly.service) echo static;; "
        "*is-enabled*) echo disabled; exit 1;; esac");
  }
  ~LaunchControlTest() override { setenv("PATH", before.c_str(), 1); }

  void setTool(const std::string& script) const {
    tree.write("bin/systemctl",
               "#!/bin/sh\necho \"$*\" >> " + tree.path("calls").string() + "\n" + script + "\n");
    std::filesystem::permissions(tree.path("bin/systemctl"), std::filesystem::perms::owner_all);
    setenv("PATH", (tree.path("bin").string() + ":" + before).c_str(), 1);
  }
  std::string calls() const {
    std::ifstream in(tree.path("calls"));
    return {std::istreambuf_iterator(in), {}};
  }

  const std::string before;
  RecordedTree tree;
  LaunchControl control;
};

TEST_F(LaunchControlTest, stopsTheUnitOfTheFile) {
  control.unload("/home/kim/.config/systemd/user/acme.timer");
  EXPECT_EQ(calls(), "--user stop -- acme.timer\n");
}

TEST_F(LaunchControlTest, stopsWhatWasStartedFromAnEntry) {
  control.unload("/home/kim/.config/autostart/org.acme.Tea-Time.desktop");
  EXPECT_EQ(calls(), "--user stop -- app-org.acme.Tea\\x2dTime@autostart.service\n");
}

TEST_F(LaunchControlTest, startsOnlyAnEnabledUnit) {
  control.load("/x/off.service");
  EXPECT_EQ(calls(), "--user is-enabled -- off.service\n");
  control.load("/x/on.service");
  EXPECT_TRUE(calls().ends_with("--user is-enabled -- on.service\n--user start --no-block -- on.service\n"));
}

TEST_F(LaunchControlTest, aServiceThatOnlyItsTimerStartsWaitsForTheTimer) {
  control.load("/x/nightly.service");
  EXPECT_EQ(calls(), "--user is-enabled -- nightly.service\n");
}

TEST_F(LaunchControlTest, anEntryStartsAtTheNextLogin) {
  control.load("/home/kim/.config/autostart/acme.desktop");
  EXPECT_EQ(calls(), "");
}

TEST_F(LaunchControlTest, readsChangedFilesAgain) {
  control.reload();
  EXPECT_EQ(calls(), "--user daemon-reload\n");
}

TEST_F(LaunchControlTest, aMissingToolIsIgnored) {
  setenv("PATH", tree.root().c_str(), 1);
  control.unload("/x/acme.service");
  control.load("/x/acme.service");
  control.reload();
  EXPECT_EQ(calls(), "");
}

TEST(AutostartUnitNameTest, escapesAsTheServiceManagerDoes) {
  EXPECT_EQ(autostartUnitName("slack.desktop"), "app-slack@autostart.service");
  EXPECT_EQ(autostartUnitName("a b-c_d:e.f.desktop"), "app-a\\x20b\\x2dc_d:e.f@autostart.service");
  EXPECT_EQ(autostartUnitName("ä.desktop"), "app-\\xc3\\xa4@autostart.service");
}

}  // namespace
}  // namespace vorli::linuxhost
