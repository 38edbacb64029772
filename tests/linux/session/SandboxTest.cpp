#include "linux/session/Sandbox.h"
#include "tests/linux/RecordedTree.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

struct SandboxTest : testing::Test {
  SandboxTest() { unsetenv("SNAP"); }
  ~SandboxTest() override { unsetenv("SNAP"); }

  RecordedTree tree;
};

TEST_F(SandboxTest, anOrdinaryProgramIsNotSandboxed) {
  EXPECT_FALSE(isSandboxed("/usr/bin/vorli", tree.root()));
}

TEST_F(SandboxTest, aProgramWithTheMarkOfAFlatpakIsSandboxed) {
  tree.write(".flatpak-info", "[Application]\nname=com.kv.vorli\n");
  EXPECT_TRUE(isSandboxed("/app/bin/vorli", tree.root()));
}

TEST_F(SandboxTest, aProgramInTheFolderOfItsSnapIsSandboxed) {
  setenv("SNAP", "/snap/vorli/7", 1);
  EXPECT_TRUE(isSandboxed("/snap/vorli/7/bin/vorli", tree.root()));
}

TEST_F(SandboxTest, aProgramStartedByASnapIsNotSandboxed) {
  setenv("SNAP", "/snap/terminal/7", 1);
  EXPECT_FALSE(isSandboxed("/usr/bin/vorli", tree.root()));
  EXPECT_FALSE(isSandboxed("/snap/terminal/70/bin/vorli", tree.root()));
}

}  // namespace
}  // namespace vorli::linuxhost
