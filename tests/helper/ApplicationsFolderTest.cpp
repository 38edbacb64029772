#include "helper/ApplicationsFolder.h"
#include "tests/fakes/ApplicationBundle.h"

namespace vorli {
namespace {

struct ApplicationsFolderTest : testing::Test {
  fakes::ApplicationBundle bundle;

  bool onMacOS(std::string path) {
    bundle.path = std::move(path);
    bundle.home = "/Users/kim";
    return isAppInApplicationsFolder(bundle, ApplicationsFolders::macOS);
  }
  bool onLinux(std::string path) {
    bundle.path = std::move(path);
    bundle.home = "/home/kim";
    return isAppInApplicationsFolder(bundle, ApplicationsFolders::linuxDesktop);
  }
};

TEST_F(ApplicationsFolderTest, macOSKnowsTheTwoApplicationsFoldersAtAnyDepth) {
  EXPECT_TRUE(onMacOS("/Applications/Vorli.app"));
  EXPECT_TRUE(onMacOS("/Applications/Utilities/Deep/Vorli.app"));
  EXPECT_TRUE(onMacOS("/Users/kim/Applications/Vorli.app"));
  EXPECT_TRUE(onMacOS("/Users/kim/Applications/Sub/Vorli.app"));
}

TEST_F(ApplicationsFolderTest, macOSTestsThePlainBeginningOfThePath) {
  EXPECT_FALSE(onMacOS("/Users/kim/Downloads/Vorli.app"));
  EXPECT_FALSE(onMacOS("/Applications"));
  EXPECT_FALSE(onMacOS("/ApplicationsOld/Vorli.app"));
  EXPECT_FALSE(onMacOS("/applications/Vorli.app"));
  EXPECT_FALSE(onMacOS("/Users/kimberly/Applications/Vorli.app"));
  EXPECT_FALSE(onMacOS("/Volumes/Disk/Applications/Vorli.app"));
  EXPECT_FALSE(onMacOS("/usr/bin/vorli"));
  EXPECT_FALSE(onMacOS(""));
}

TEST_F(ApplicationsFolderTest, linuxKnowsWherePackagesAndUsersInstallPrograms) {
  EXPECT_TRUE(onLinux("/usr/bin/vorli"));
  EXPECT_TRUE(onLinux("/usr/local/bin/vorli"));
  EXPECT_TRUE(onLinux("/opt/vorli/bin/vorli"));
  EXPECT_TRUE(onLinux("/app/bin/vorli"));
  EXPECT_TRUE(onLinux("/var/lib/flatpak/app/com.kv.vorli/current/active/files/bin/vorli"));
  EXPECT_TRUE(onLinux("/snap/vorli/12/bin/vorli"));
  EXPECT_TRUE(onLinux("/var/lib/snapd/snap/vorli/12/bin/vorli"));
  EXPECT_TRUE(onLinux("/home/kim/.local/bin/vorli"));
  EXPECT_TRUE(onLinux("/home/kim/Applications/vorli"));
}

TEST_F(ApplicationsFolderTest, linuxTestsThePlainBeginningOfThePath) {
  EXPECT_FALSE(onLinux("/home/kim/Downloads/vorli"));
  EXPECT_FALSE(onLinux("/home/kim/build/dev/src/vorli"));
  EXPECT_FALSE(onLinux("/home/kim/.localized/bin/vorli"));
  EXPECT_FALSE(onLinux("/home/kimberly/.local/bin/vorli"));
  EXPECT_FALSE(onLinux("/usrlocal/bin/vorli"));
  EXPECT_FALSE(onLinux("/Applications/vorli"));
}

}  // namespace
}  // namespace vorli
