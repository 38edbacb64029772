#include "linux/helper/HelperFiles.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace vorli::linuxhost {
namespace {

struct HelperFilesTest : testing::Test {
  void SetUp() override {
    std::string name = std::filesystem::temp_directory_path() / "vorli-files-XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
    program("vorli-helper", "build one");
    program("vorli-helper-install", "script");
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  void program(const std::string& name, const std::string& content) const {
    std::ofstream(folder / name) << content;
    std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
  }
  HelperFiles files() const { return HelperFiles(folder.string(), (folder / "installed").string()); }

  std::filesystem::path folder;
};

TEST_F(HelperFilesTest, aDaemonThatTheScriptDidNotInstallIsNotAnotherBuild) {
  EXPECT_FALSE(files().bringsOtherThanInstalled());
}

TEST_F(HelperFilesTest, theSameBuildIsRecognisedByItsContent) {
  program("installed", "build one");
  EXPECT_FALSE(files().bringsOtherThanInstalled());
  program("installed", "build two");
  EXPECT_TRUE(files().bringsOtherThanInstalled());
  program("installed", "build one, longer");
  EXPECT_TRUE(files().bringsOtherThanInstalled());
}

TEST_F(HelperFilesTest, withoutAScriptThereIsNoBuildToInstall) {
  program("installed", "build two");
  std::filesystem::remove(folder / "vorli-helper-install");
  EXPECT_FALSE(files().bringsOtherThanInstalled());
}

}  // namespace
}  // namespace vorli::linuxhost
