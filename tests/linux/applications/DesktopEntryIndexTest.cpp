#include "linux/applications/DesktopEntryIndex.h"
#include "tests/fakes/ManualScheduler.h"

#include <QCoreApplication>
#include <filesystem>
#include <fstream>
#include <functional>
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
  std::string idOf(const formats::DesktopEntry* found) { return found ? found->id : "none"; }
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

TEST_F(DesktopEntryIndexTest, aHiddenEntryNeedsNothingElse) {
  std::ofstream(root / "own/a.desktop") << "[Desktop Entry]\nHidden=true\n";
  entry("system/a.desktop", "a");
  EXPECT_EQ(index().byID("a"), nullptr);
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

TEST_F(DesktopEntryIndexTest, aVisibleEntryCountsBeforeItsHandlerOfLinks) {
  entry("system/a-handler.desktop", "code --open-url", "NoDisplay=true\nStartupWMClass=Code\n");
  entry("system/maker.code.desktop", "code", "StartupWMClass=Code\n");
  entry("system/z-handler.desktop", "code --other", "NoDisplay=true\nStartupWMClass=Code\n");
  entry("system/handlers.code.desktop", "code --third", "NoDisplay=true\nStartupWMClass=Quiet\n");
  entry("system/b.desktop", "b", "StartupWMClass=Both\n");
  entry("system/c.desktop", "c", "StartupWMClass=Both\n");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byStartupWMClass("Code")), "maker.code");
  EXPECT_EQ(idOf(entries.byLastPiece("code")), "maker.code");
  EXPECT_EQ(idOf(entries.byStartupWMClass("Quiet")), "handlers.code");
  EXPECT_EQ(idOf(entries.byStartupWMClass("Both")), "none");
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

TEST_F(DesktopEntryIndexTest, theLauncherOfSandboxesBelongsToNone) {
  fs::create_directories(root / "snap/bin");
  program("bin/snap");
  program("bin/flatpak");
  fs::create_symlink(root / "bin/snap", root / "snap/bin/viewer");
  entry("system/viewer_viewer.desktop", (root / "snap/bin/viewer").string());
  entry("system/org.example.Foo.desktop", "flatpak run org.example.Foo", "X-Flatpak=org.example.Foo\n");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/snap").string())), "none");
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/flatpak").string())), "none");
  EXPECT_EQ(idOf(entries.byID("viewer_viewer")), "viewer_viewer");
}

TEST_F(DesktopEntryIndexTest, anEntryForAnotherDesktopOrWithoutItsProgramDoesNotCancelItsTwin) {
  for (const char* name : {"bin/files", "bin/tool", "bin/there"}) program(name);
  entry("system/files.desktop", "files", "StartupWMClass=Files\n");
  entry("system/files-kde.desktop", "files", "OnlyShowIn=KDE;LXQt;\nStartupWMClass=Files\n");
  entry("system/tool.desktop", "tool", "TryExec=there\n");
  entry("system/tool-gnome.desktop", "tool", "NotShowIn=XFCE;\n");
  entry("system/tool-gone.desktop", "tool", "TryExec=gone\n");
  places.desktops = {"XFCE"};
  EXPECT_EQ(idOf(index().byProgram((root / "bin/files").string())), "files");
  EXPECT_EQ(idOf(index().byStartupWMClass("Files")), "files");
  EXPECT_EQ(idOf(index().byProgram((root / "bin/tool").string())), "tool");
  places.desktops = {"ubuntu", "KDE"};
  EXPECT_EQ(idOf(index().byProgram((root / "bin/files").string())), "none");
  places.desktops = {};
  EXPECT_EQ(idOf(index().byProgram((root / "bin/files").string())), "none");
  EXPECT_EQ(idOf(index().byID("files-kde")), "files-kde");
}

TEST_F(DesktopEntryIndexTest, anEntryIsFoundByItsFileHoweverDeep) {
  entry("system/vendor/tool.desktop", "tool");
  entry("own/tool.desktop", "tool");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byPath((root / "system/vendor/tool.desktop").string())), "vendor-tool");
  EXPECT_EQ(idOf(entries.byPath((root / "own/tool.desktop").string())), "tool");
  EXPECT_EQ(idOf(entries.byPath((root / "elsewhere/tool.desktop").string())), "none");
}

TEST_F(DesktopEntryIndexTest, aPlainProgramIsTheEntryWithoutArguments) {
  for (const char* name : {"bin/office", "bin/twins"}) program(name);
  entry("system/writer.desktop", "office --writer %U");
  entry("system/calc.desktop", "office --calc %U");
  entry("system/startcenter.desktop", "office %U");
  entry("system/one.desktop", "twins");
  entry("system/two.desktop", "twins %f");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byPlainProgram((root / "bin/office").string())), "startcenter");
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/office").string())), "none");
  EXPECT_EQ(idOf(entries.byPlainProgram((root / "bin/twins").string())), "none");
}

TEST_F(DesktopEntryIndexTest, anEntryLeadsToItsProgramHoweverManyStartIt) {
  for (const char* name : {"bin/office", "bin/python3", "opt/tool.py"}) program(name);
  fs::create_symlink("office", root / "bin/suite");
  entry("system/writer.desktop", "office --writer %U");
  entry("system/calc.desktop", "suite --calc %U");
  entry("system/tool.desktop", "python3 " + (root / "opt/tool.py").string());
  entry("system/quiet.desktop", "office --link", "NoDisplay=true\n");
  const auto entries = index();
  EXPECT_EQ(entries.programOf(*entries.byID("writer")), (root / "bin/office").string());
  EXPECT_EQ(entries.programOf(*entries.byID("calc")), (root / "bin/office").string());
  EXPECT_EQ(entries.programOf(*entries.byID("tool")), (root / "opt/tool.py").string());
  EXPECT_EQ(entries.programOf(*entries.byID("quiet")), "");
}

TEST_F(DesktopEntryIndexTest, aScriptLeadsToItsFolderAndAProgramDoesNot) {
  for (const char* folder : {"opt/script", "opt/binary", "opt/two"}) fs::create_directories(root / folder);
  for (const char* name : {"opt/script/run.sh", "opt/two/a.sh", "opt/two/b.sh"}) program(name);
  std::ofstream(root / "opt/binary/run") << "\177ELF";
  entry("system/script.desktop", (root / "opt/script/run.sh").string());
  entry("system/binary.desktop", (root / "opt/binary/run").string());
  entry("system/a.desktop", (root / "opt/two/a.sh").string() + " --part");
  entry("system/b.desktop", (root / "opt/two/b.sh").string() + " --part");
  const auto entries = index();
  const auto in = [&](const char* folder) { return idOf(entries.byScriptIn((root / folder).string())); };
  EXPECT_EQ(in("opt/script"), "script");
  EXPECT_EQ(in("opt/binary"), "none");
  EXPECT_EQ(in("opt/two"), "none");
  entry("system/whole.desktop", (root / "opt/two/a.sh").string());
  EXPECT_EQ(idOf(index().byScriptIn((root / "opt/two").string())), "whole");
}

TEST_F(DesktopEntryIndexTest, looksUpClassesExactlyAndIDsInAnyCase) {
  entry("system/org.example.Viewer.desktop", "v", "StartupWMClass=Viewer-bin\n");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byStartupWMClass("Viewer-bin")), "org.example.Viewer");
  EXPECT_EQ(idOf(entries.byStartupWMClass("viewer-bin")), "none");
  EXPECT_EQ(idOf(entries.byIDIgnoringCase("ORG.example.viewer")), "org.example.Viewer");
  EXPECT_EQ(idOf(entries.byLastPiece("Viewer")), "org.example.Viewer");
}

// Texts that are not an application's entry, each for another reason.
std::vector<std::string> malformedEntries() {
  const std::string head = "[Desktop Entry]\n", type = "Type=Application\n", name = "Name=Bad\n";
  const std::string good = head + type + name;
  std::vector<std::string> texts{
      "",
      "\n\n\n",
      std::string(1, '\0'),
      std::string(4096, '\0'),
      "\xff\xfe[\0D\0e\0s\0k\0t\0o\0p\0",
      "\xef\xbb\xbf" + good + "Exec=bad\n",
      "[Desktop Entry",
      "[Desktop Entry ]\n" + type + name + "Exec=bad\n",
      "[desktop entry]\n" + type + name + "Exec=bad\n",
      "[Other]\n" + type + name + "Exec=bad\n",
      type + name + "Exec=bad\n",
      type + name + "Exec=bad\n" + head,
      head,
      head + "\0",
      head + type,
      head + type + "Exec=bad\n",
      head + type + "Name=\nExec=bad\n",
      head + type + "Name=   \t \nExec=bad\n",
      head + type + "Name[de]=Schlecht\nExec=bad\n",
      head + name + "Exec=bad\n",
      head + "Type=\n" + name + "Exec=bad\n",
      head + "Type=Link\n" + name + "URL=http://127.0.0.1/\n",
      head + "Type=Directory\n" + name,
      head + "Type=application\n" + name + "Exec=bad\n",
      head + "Type=Application;\n" + name + "Exec=bad\n",
      head + "TypeApplication\n" + name + "Exec=bad\n",
      head + "[Desktop Action]\n" + type + name + "Exec=bad\n",
      head + "# " + type + name + "Exec=bad\n",
      good,
      good + "Exec=\n",
      good + "Exec=   \n",
      good + "Exec\n",
      good + "=bad\n",
      good + "exec=bad\n",
      good + "Exec[C]=bad\n",
      good + "Exec=%U\n",
      good + "Exec=%f %u %i %c %k\n",
      good + "Exec=\"bad\n",
      good + "Exec=bad \"%U\n",
      good + "Exec=\"\n",
      good + "Exec=env\n",
      good + "Exec=env A=B\n",
      good + "Exec=env -u\n",
      good + "Exec=env -u DISPLAY\n",
      good + "Exec=env env env A=B C=D\n",
      good + "Exec=nohup setsid exec\n",
      good + "Exec=\n[Desktop Action new]\nExec=bad\n",
      good + "DBusActivatable=false\n",
      good + "DBusActivatable=True\n",
      good + "TryExec=\n",
      good + "Exec=\"bad\\\"\n",
      std::string(500'000, '['),
      std::string(500'000, '\n') + "[Desktop",
      std::string(500'000, '='),
      std::string(500'000, '\xc3') + "\n" + good,
      head + type + "Name=" + std::string(500'000, '\\'),
      good + "Exec=\"" + std::string(500'000, ' '),
      good + "Exec=" + std::string(500'000, '\t'),
  };
  texts[13] = head + std::string(3, '\0') + type;  // NUL bytes inside
  std::string manyGroups = "[A]\n";
  for (int i = 0; i < 20'000; ++i) manyGroups += "[" + std::to_string(i) + "]\n";
  texts.push_back(manyGroups);
  std::string manyKeys = head + type;
  for (int i = 0; i < 20'000; ++i) manyKeys += "Name[" + std::to_string(i) + "]=Bad\n";
  texts.push_back(manyKeys);
  return texts;
}

TEST_F(DesktopEntryIndexTest, sixtyMalformedEntriesNeitherBlockNorBreakTheIndex) {
  const auto texts = malformedEntries();
  ASSERT_GE(texts.size(), 60u);
  program("bin/good");
  entry("system/a-good.desktop", "good");
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::ofstream(root / ("system/bad" + std::to_string(i) + ".desktop"), std::ios::binary) << texts[i];
  }
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/good").string())), "a-good");
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(entries.byID("bad" + std::to_string(i)), nullptr) << texts[i].substr(0, 100);
  }
  EXPECT_EQ(entries.size(), 1u);
}

TEST_F(DesktopEntryIndexTest, unreadableTextIsRepairedAndStillAnEntry) {
  program("bin/good");
  entry("system/good.desktop", "good", "Icon=\xff\xfe\nGarbage\xc3\n[\xff]\n");
  const auto entries = index();
  ASSERT_NE(entries.byID("good"), nullptr);
  EXPECT_EQ(entries.byID("good")->icon, "\uFFFD\uFFFD");
}

TEST_F(DesktopEntryIndexTest, hostileFoldersNeitherBlockNorBreakTheIndex) {
  mkfifo((root / "system/fifo.desktop").c_str(), 0644);
  mknod((root / "system/socket.desktop").c_str(), S_IFSOCK | 0644, 0);
  fs::create_directory_symlink(root / "system", root / "system/loop");
  fs::create_directory_symlink("loop2", root / "system/loop1");
  fs::create_directory_symlink("loop1", root / "system/loop2");
  fs::create_symlink("self.desktop", root / "system/self.desktop");
  fs::create_symlink("nowhere.desktop", root / "system/dangling.desktop");
  fs::create_symlink("/dev/zero", root / "system/zero.desktop");
  fs::create_symlink("/proc/kmsg", root / "system/waits.desktop");
  fs::create_directory(root / "system/folder.desktop");
  const std::string good = "[Desktop Entry]\nType=Application\nName=Huge\nExec=good\n";
  std::ofstream(root / "system/huge.desktop") << good << std::string(5 * 1024 * 1024, 'x');
  std::string deep = "system";
  for (int i = 0; i < 40; ++i) deep += "/d";
  fs::create_directories(root / deep);
  program("bin/good");
  entry("system/good.desktop", "good");
  const auto entries = index();
  EXPECT_EQ(idOf(entries.byProgram((root / "bin/good").string())), "good");
  EXPECT_EQ(entries.size(), 1u);
}

struct ChangingEntriesTest : DesktopEntryIndexTest {
  /// Delivers the kernel's events to the index, and waits until a burst is over.
  void settle() {
    QCoreApplication::processEvents();
    scheduler.advance(1.0);
  }
  /// Number of times that the index is read when this happens.
  int readings(DesktopEntryIndex& entries, const std::function<void()>& change) {
    int count = 0;
    entries.setChangeHandler([&count] { ++count; });
    change();
    settle();
    entries.setChangeHandler({});
    return count;
  }
};

TEST_F(ChangingEntriesTest, aBurstOfChangesIsReadOnce) {
  DesktopEntryIndex entries(scheduler, places);
  EXPECT_EQ(readings(entries,
                     [&] {
                       for (int i = 0; i < 50; ++i) entry("own/e" + std::to_string(i) + ".desktop", "e");
                       fs::remove(root / "own/e1.desktop");
                       fs::rename(root / "own/e2.desktop", root / "own/f.desktop");
                     }),
            1);
  EXPECT_EQ(entries.size(), 49u);
  EXPECT_NE(entries.byID("f"), nullptr);
  EXPECT_EQ(readings(entries, [&] { entry("own/f.desktop", "changed"); }), 1);
  EXPECT_EQ(entries.byID("f")->program, "changed");
}

TEST_F(ChangingEntriesTest, otherFilesOfTheFolderAreIgnored) {
  DesktopEntryIndex entries(scheduler, places);
  EXPECT_EQ(readings(entries,
                     [&] {
                       std::ofstream(root / "own/mimeinfo.cache") << "x";
                       fs::rename(root / "own/mimeinfo.cache", root / "own/mimeapps.list");
                     }),
            0);
}

TEST_F(ChangingEntriesTest, aFolderInsideIsFollowedToo) {
  DesktopEntryIndex entries(scheduler, places);
  EXPECT_EQ(readings(entries, [&] { fs::create_directory(root / "own/kde"); }), 1);
  EXPECT_EQ(readings(entries, [&] { entry("own/kde/viewer.desktop", "v"); }), 1);
  EXPECT_NE(entries.byID("kde-viewer"), nullptr);
}

TEST_F(ChangingEntriesTest, aFolderCreatedLaterIsNoticedHoweverMuchOfItsPathIsMissing) {
  places.folders.push_back(root / "flatpak/exports/share/applications");
  DesktopEntryIndex entries(scheduler, places);
  EXPECT_EQ(readings(entries, [&] { std::ofstream(root / "something else") << "x"; }), 0);
  entry("flatpak/exports/share/applications/org.example.Foo.desktop", "foo");
  settle();
  EXPECT_NE(entries.byID("org.example.Foo"), nullptr);

  fs::remove_all(root / "flatpak");
  settle();
  EXPECT_EQ(entries.byID("org.example.Foo"), nullptr);
  for (const char* folder : {"flatpak", "flatpak/exports", "flatpak/exports/share"}) {
    fs::create_directory(root / folder);
    settle();
  }
  entry("flatpak/exports/share/applications/org.example.Bar.desktop", "bar");
  settle();
  EXPECT_NE(entries.byID("org.example.Bar"), nullptr);
}

TEST_F(ChangingEntriesTest, aFolderIsAwaitedEvenIfTheOneAboveItIsRemovedOrMovedAway) {
  const auto above = root / "flatpak/exports/share";
  places.folders.push_back(above / "applications");
  fs::create_directories(above);
  DesktopEntryIndex entries(scheduler, places);
  fs::remove_all(root / "flatpak");
  settle();
  entry("flatpak/exports/share/applications/org.example.Foo.desktop", "foo");
  settle();
  EXPECT_NE(entries.byID("org.example.Foo"), nullptr);

  fs::remove_all(above / "applications");
  settle();
  fs::rename(above, root / "away");
  settle();
  entry("flatpak/exports/share/applications/org.example.Bar.desktop", "bar");
  settle();
  EXPECT_NE(entries.byID("org.example.Bar"), nullptr);
}

}  // namespace
}  // namespace vorli::linuxhost
