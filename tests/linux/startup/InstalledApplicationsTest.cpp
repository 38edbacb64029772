#include "linux/startup/InstalledApplications.h"
#include "tests/linux/RecordedTree.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace vorli::linuxhost {
namespace {

struct InstalledApplicationsTest : testing::Test {
  InstalledApplicationsTest() {
    program("bin/acme");
    program("bin/tea");
    entry("own/org.acme.Acme.desktop", "Acme", path("bin/acme"));
    entry("shared/tea.desktop", "Tea", "tea");
  }

  std::string path(const std::string& name) const { return tree.path(name).string(); }
  void program(const std::string& name) const {
    tree.write(name, "");
    chmod(path(name).c_str(), 0755);
  }
  void entry(const std::string& name, const std::string& title, const std::string& exec,
             const std::string& more = "") {
    tree.write(name, "[Desktop Entry]\nType=Application\nName=" + title + "\nName[de]=" + title +
                         " (de)\nExec=" + exec + "\n" + more);
    touchFolder(name);
  }
  // The kernel's clock may not have moved on since the folder was read.
  void touchFolder(const std::string& name) {
    const auto folder = tree.path(name).parent_path();
    std::filesystem::last_write_time(
        folder, std::filesystem::last_write_time(folder) + std::chrono::seconds(++changes));
    applications.lookAgain();
  }

  RecordedTree tree;
  int changes = 0;
  InstalledApplications applications{{{path("own"), path("shared")}, {path("bin")}, {"de"}}};
};

TEST_F(InstalledApplicationsTest, findsAnApplicationByItsIdentifier) {
  EXPECT_EQ(applications.urlForApplication("tea"), path("shared/tea.desktop"));
  EXPECT_EQ(applications.urlForApplication("ORG.acme.acme"), path("own/org.acme.Acme.desktop"));
  EXPECT_EQ(applications.urlForApplication("acme"), std::nullopt);
  EXPECT_EQ(applications.urlForApplication(""), std::nullopt);
}

TEST_F(InstalledApplicationsTest, describesAnApplicationInTheUsersLanguage) {
  const auto info = applications.bundle(path("shared/tea.desktop"));
  ASSERT_TRUE(info);
  EXPECT_EQ(info->bundleIdentifier, "tea");
  EXPECT_EQ(info->bundleDisplayName, "Tea (de)");
  EXPECT_FALSE(applications.bundle(path("shared")));
  EXPECT_FALSE(applications.bundle(path("shared/none.desktop")));
}

TEST_F(InstalledApplicationsTest, findsTheOnlyApplicationOfAProgram) {
  EXPECT_EQ(applications.urlForProgram(path("bin/tea")), path("shared/tea.desktop"));
  std::filesystem::create_symlink("tea", tree.path("bin/cha"));
  EXPECT_EQ(applications.urlForProgram(path("bin/cha")), path("shared/tea.desktop"));
  EXPECT_EQ(applications.urlForProgram(path("bin/none")), std::nullopt);

  entry("shared/kettle.desktop", "Kettle", "tea --boil", "NoDisplay=true\n");
  EXPECT_EQ(applications.urlForProgram(path("bin/tea")), path("shared/tea.desktop"));
  entry("shared/pot.desktop", "Pot", "tea --pot");
  EXPECT_EQ(applications.urlForProgram(path("bin/tea")), std::nullopt);
}

TEST_F(InstalledApplicationsTest, anEarlierFolderHidesALaterOne) {
  entry("own/tea.desktop", "My tea", "tea");
  EXPECT_EQ(applications.urlForApplication("tea"), path("own/tea.desktop"));
  tree.write("own/tea.desktop", "[Desktop Entry]\nHidden=true\n");
  touchFolder("own/tea.desktop");
  EXPECT_EQ(applications.urlForApplication("tea"), std::nullopt);
}

TEST_F(InstalledApplicationsTest, noticesWhatIsInstalledAndRemoved) {
  EXPECT_TRUE(applications.urlForApplication("tea"));
  tree.remove("shared/tea.desktop");
  touchFolder("shared/tea.desktop");
  EXPECT_FALSE(applications.urlForApplication("tea"));
  entry("shared/new.desktop", "New", "tea");
  EXPECT_TRUE(applications.urlForApplication("new"));
}

TEST_F(InstalledApplicationsTest, answersAsOfTheLastLook) {
  applications.lookAgain();
  tree.write("shared/new.desktop", "[Desktop Entry]\nType=Application\nName=New\nExec=tea\n");
  EXPECT_FALSE(applications.urlForApplication("new"));
  touchFolder("shared/new.desktop");
  EXPECT_TRUE(applications.urlForApplication("new"));
}

}  // namespace
}  // namespace vorli::linuxhost
