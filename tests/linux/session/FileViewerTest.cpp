#include "linux/session/FileViewer.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/linux/RecordedTree.h"
#include "tests/ui/linux/PrivateSessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace vorli::linuxhost {
namespace {

using ui::loopUntil;
using ui::PrivateSessionBus;

class ScriptedFileManager final : public QDBusVirtualObject {
 public:
  explicit ScriptedFileManager(PrivateSessionBus& bus) : buses_(bus), bus_(bus.connect()) {
    bus_.registerVirtualObject("/org/freedesktop/FileManager1", this);
    bus_.registerService("org.freedesktop.FileManager1");
  }
  ~ScriptedFileManager() override { buses_.disconnect(bus_); }

  bool fails = false;
  std::vector<QVariantList> shown;  // the arguments of each ShowItems

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (message.member() != "ShowItems") return false;
    shown.push_back(message.arguments());
    bus.send(fails ? message.createErrorReply("org.example.Failed", "no") : message.createReply());
    return true;
  }

 private:
  PrivateSessionBus& buses_;
  QDBusConnection bus_;
};

struct FileViewerTest : testing::Test {
  PrivateSessionBus bus;
  RecordedTree tree;
  fakes::CapturedLog log;
  LinkHandlers::Places places{
      .configFolders = {tree.root() + "/config"}, .dataFolders = {tree.root()}, .desktops = {}};
  FileViewer viewer{bus.connect(), places};

  /// A program for folders, which writes down what it should open.
  void installProgramForFolders() const {
    const auto program = tree.path("program");
    tree.write("program", "#!/bin/sh\nprintf '%s.' \"$1\" >" + tree.root() + "/opened\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    tree.write("applications/files.desktop", "[Desktop Entry]\nExec=" + program.string() + " %u\n");
    tree.write("config/mimeapps.list", "[Default Applications]\ninode/directory=files.desktop\n");
  }
  std::string opened() const {
    std::ifstream file(tree.path("opened"));
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(FileViewerTest, selectsTheFileInTheFileManager) {
  installProgramForFolders();
  ScriptedFileManager manager(bus);
  viewer.reveal("/state of kim/Logs/100%.log");
  loopUntil([&] { return !manager.shown.empty(); });
  EXPECT_EQ(manager.shown.at(0).at(0).toStringList(),
            QStringList{"file:///state%20of%20kim/Logs/100%25.log"});
  EXPECT_EQ(manager.shown.at(0).at(1).toString(), "");
  viewer.reveal("/b");
  loopUntil([&] { return manager.shown.size() == 2; });  // the first answer has been dealt with
  EXPECT_EQ(opened(), "");
}

TEST_F(FileViewerTest, aFileManagerThatFailsLeavesTheFolderToTheUsersProgram) {
  installProgramForFolders();
  ScriptedFileManager manager(bus);
  manager.fails = true;
  viewer.reveal("/state/Logs/diagnostics.log");
  loopUntil([&] { return opened().ends_with('.'); });
  EXPECT_EQ(opened(), "/state/Logs.");
}

TEST_F(FileViewerTest, withoutAFileManagerTheUsersProgramOpensTheFolder) {
  installProgramForFolders();
  viewer.reveal("/state/Logs/diagnostics.log");
  loopUntil([&] { return opened().ends_with('.'); });
  EXPECT_EQ(opened(), "/state/Logs.");
}

TEST_F(FileViewerTest, withoutASessionBusTheUsersProgramOpensTheFolder) {
  installProgramForFolders();
  FileViewer alone(QDBusConnection("no bus"), places);
  alone.reveal("/state/Logs/diagnostics.log");
  loopUntil([&] { return opened().ends_with('.'); });
  EXPECT_EQ(opened(), "/state/Logs.");
}

TEST_F(FileViewerTest, withoutAnythingThatShowsFilesTheFailureIsLogged) {
  viewer.reveal("/state/Logs/diagnostics.log");
  loopUntil([&] { return !log.lines().empty(); });
  EXPECT_EQ(log.lines(),
            (std::vector<fakes::CapturedLog::Line>{
                {LogLevel::error, "desktop", "no file manager shows /state/Logs/diagnostics.log"}}));
}

}  // namespace
}  // namespace vorli::linuxhost
