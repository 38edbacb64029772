#include "linux/DesktopEntryIndex.h"
#include "tests/fakes/ManualScheduler.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;

struct DesktopEntryIndexTest : testing::Test {
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "vorli-entries-XXXXXX").string();
    root = fs::canonical(mkdtemp(pattern.data()));
    for (const char* folder : {"own", "system", "bin", "opt"}) fs::create_directories(root / folder);
    places.folders = {root / "own", root / "system"};
    places.programPath = {root / "bin"};
  }
  void TearDown() override { fs::remove_all(root); }

  void program(const std::string& name) {
    std::ofstream(root / name) << "#!/bin/sh\n";
    fs::permissions(root / name, fs::perms::owner_all);
  }
  void entry(const std::string& file, const std::string& exec, const std::string& more = "") {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << "[Desktop Entry]\nType=Application\nName=" << fs::path(file).stem().string()
                               << "\nExec=" << exec << "\n"
                               << more;
  }
  std::string idOf(const DesktopEntry* found) { return found ? found->id : "none"; }
  DesktopEntryIndex index() { return DesktopEntryIndex(scheduler, places); }

  fakes::ManualScheduler scheduler;
  DesktopEntryIndex::Places places;
  fs::path root;
};

TEST_F(DesktopEntryIndexTest, theUsersOwnEntryHidesTheSystemsOfTheSameID) {
  entry("own/a.desktop", "a", "Icon=own\n");
  entry("system/a.desktop", "a", "Icon=system\n");
  entry("own/b.desktop", "b", "Hidden=true\n");
  entry("system/b.desktop", "b");
  const auto entries = index();
  EXPECT_EQ(entries.byID("a")->icon, "own");
  EXPECT_EQ(entries.byID("b"), nullptr);
  EXPECT_EQ(entries.byIDIgnoringCase("b"), nullptr);
}

TEST_F(DesktopEntryIndexTest, foldersJoinTheIDWithDashes) {
  entry("system/kde/viewer.desktop", "v");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byID("kde-viewer")), "kde-viewer");
}

TEST_F(DesktopEntryIndexTest, aProgramBelongsToTheOneVisibleEntryThatStartsIt) {
  program("bin/viewer");
  program("bin/shared");
  fs::create_symlink(root / "bin/viewer", root / "bin/alias");
  entry("system/org.example.Viewer.desktop", "alias %U");
  entry("system/one.desktop", "shared");
  entry("system/two.desktop", "shared --other");
  program("bin/quiet");
  entry("system/quiet.desktop", "quiet", "NoDisplay=true\n");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/viewer").string())), "org.example.Viewer");
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/shared").string())), "none");
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/quiet").string())), "none");
  EXPECT_EQ(idOf(entries.byProgram("")), "none");
}

TEST_F(DesktopEntryIndexTest, anInterpretersScriptIsTheProgram) {
  program("bin/python3.11");
  fs::create_symlink("python3.11", root / "bin/python3");
  program("opt/tool.py");
  entry("system/tool.desktop", "python3 " + (root / "opt/tool.py").string());
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byProgram((root / "opt/tool.py").string())), "tool");
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/python3.11").string())), "none");
}

TEST_F(DesktopEntryIndexTest, aFolderBelongsToTheOnlyEntryThatStartsAProgramInIt) {
  for (const char* folder : {"opt/maker/one/bin", "opt/maker/two", "opt/shared"})
    fs::create_directories(root / folder);
  for (const char* name : {"opt/maker/one/bin/one", "opt/maker/two/two", "opt/shared/tool"}) program(name);
  entry("system/one.desktop", (root / "opt/maker/one/bin/one").string());
  entry("system/two.desktop", (root / "opt/maker/two/two").string());
  entry("system/a.desktop", (root / "opt/shared/tool").string() + " a");
  entry("system/b.desktop", (root / "opt/shared/tool").string() + " b");
  entry("system/quiet.desktop", (root / "bin/quiet").string(), "NoDisplay=true\n");
  const auto entries = index();
  const auto inFolder = [&](const char* folder) {
    return idOf(entries.onlyOneInFolder((root / folder).string()));
  };
  EXPECT_EQ(inFolder("opt/maker/one/bin"), "one");
  EXPECT_EQ(inFolder("opt/maker/one"), "one");
  EXPECT_EQ(inFolder("opt/maker/two"), "two");
  EXPECT_EQ(inFolder("opt/maker"), "none");
  EXPECT_EQ(inFolder("opt/shared"), "none");
  EXPECT_EQ(inFolder("opt/mak"), "none");
  EXPECT_EQ(inFolder("bin"), "none");
  EXPECT_EQ(idOf(entries.onlyOneInFolder("")), "none");
}

TEST_F(DesktopEntryIndexTest, aSnapOrFlatpakOwnsTheFolderItIsKeptIn) {
  entry("system/viewer_viewer.desktop", "env BAMF_DESKTOP_FILE_HINT=x /snap/bin/viewer %U");
  entry("system/office_writer.desktop", "/snap/bin/office.writer");
  entry("system/office_calc.desktop", "/snap/bin/office.calc");
  places.folders.push_back(root / "flatpak/exports/share/applications");
  entry("flatpak/exports/share/applications/org.example.Foo.desktop", "flatpak run org.example.Foo",
        "X-Flatpak=org.example.Foo\n");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.onlyOneInFolder("/snap/viewer")), "viewer_viewer");
  EXPECT_EQ(idOf(entries.onlyOneInFolder("/var/lib/snapd/snap/viewer")), "viewer_viewer");
  EXPECT_EQ(idOf(entries.onlyOneInFolder("/snap/office")), "none");
  EXPECT_EQ(idOf(entries.onlyOneInFolder((root / "flatpak/app/org.example.Foo").string())),
            "org.example.Foo");
}

TEST_F(DesktopEntryIndexTest, looksUpClassesExactlyAndIDsInAnyCase) {
  entry("system/org.example.Viewer.desktop", "v", "StartupWMClass=Viewer-bin\n");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byStartupWMClass("Viewer-bin")), "org.example.Viewer");
  EXPECT_EQ(idOf(entries.byStartupWMClass("viewer-bin")), "none");
  EXPECT_EQ(idOf(entries.byIDIgnoringCase("ORG.example.viewer")), "org.example.Viewer");
  EXPECT_EQ(idOf(entries.byLastPiece("Viewer")), "org.example.Viewer");
}

TEST_F(DesktopEntryIndexTest, hostileFoldersNeitherBlockNorBreakTheIndex) {
  mkfifo((root / "system/fifo.desktop").c_str(), 0644);
  fs::create_directory_symlink(root / "system", root / "system/loop");
  fs::create_symlink("self.desktop", root / "system/self.desktop");
  fs::create_symlink("/dev/zero", root / "system/zero.desktop");
  fs::create_directory(root / "system/folder.desktop");
  std::ofstream(root / "system/huge.desktop") << std::string(5 * 1024 * 1024, 'x');
  std::ofstream(root / "system/binary.desktop") << std::string("\0\xff\xfe[Desktop Entry]", 18);
  for (int i = 0; i < 60; ++i)
    entry("system/broken" + std::to_string(i) + ".desktop", "\"open" + std::string(i, '\\'));
  program("bin/good");
  entry("system/good.desktop", "good");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/good").string())), "good");
  EXPECT_EQ(entries.byID("huge"), nullptr);
  EXPECT_EQ(entries.byID("broken0"), nullptr);
}

}  // namespace
}  // namespace vorli::linuxhost
