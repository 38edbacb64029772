#include "tests/linux/helper/ServiceFixture.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

namespace vorli {
namespace {

using ports::AskedBy;

struct HelperInstallTest : ServiceFixture {
  // Replaces pkexec: records what it is asked to run, and ends when the test allows it.
  void SetUp() override {
    mkfifo((bus.folder() / "gate").c_str(), 0600);
    writeProgram(bus.folder() / "bin/pkexec", "echo \"$@\" >> " + (bus.folder() / "authority.log").string() +
                                                  "\nread code words < " + (bus.folder() / "gate").string() +
                                                  "\necho \"$words\" >&2\nexit $code\n");
    path_ = std::getenv("PATH");
    setenv("PATH", ((bus.folder() / "bin").string() + ":" + path_).c_str(), 1);
    bus.start();
    bus.startAuthority("polkit");
  }
  void TearDown() override { setenv("PATH", path_.c_str(), 1); }

  void addInstaller() { writeProgram(installer(), ""); }
  /// Makes the program bring another daemon than the one that is installed, and an installer for it.
  void bringOtherBuild() {
    addInstaller();
    writeProgram(bus.folder() / "program/vorli-helper", "newer");
    writeProgram(bus.folder() / "installed", "older");
  }
  std::filesystem::path installer() const { return bus.folder() / "program/vorli-helper-install"; }
  /// The log lines about a start of the installer.
  std::string asked() const { return "--disable-internal-agent " + installer().string(); }
  void letInstallerEnd(int code, const std::string& words = "") const {
    std::ofstream(bus.folder() / "gate") << code << " " << words << "\n";
  }

  std::string path_;
};

TEST_F(HelperInstallTest, aPackagedDaemonIsRegisteredAlready) {
  bus.installScriptedHelper();
  bus.reload();
  addInstaller();
  startClient();
  ASSERT_EQ(readStatus(), 1);
  EXPECT_TRUE(service().registerDaemon(AskedBy::user).has_value());
  EXPECT_EQ(readStatus(), 1);
  EXPECT_EQ(lines(asked()), 0);
}

TEST_F(HelperInstallTest, aDaemonOfAnotherBuildIsReplacedAfterAClickAndOnce) {
  bus.installScriptedHelper();
  bus.reload();
  bringOtherBuild();
  startClient();
  ASSERT_EQ(readStatus(), 1);
  EXPECT_TRUE(manager().isOtherBuildInstalled.get());
  EXPECT_EQ(service().registerDaemon(AskedBy::program).error(),
            "The background helper is of another build; \"Reinstall\" replaces it.");
  EXPECT_EQ(lines(asked()), 0);

  const auto click = client->tasks.spawn(manager().reinstallIfStale(Reinstall::forced));
  waitUntil([&] { return lines(asked()) == 1; });
  EXPECT_EQ(service().status(), 2);
  writeProgram(bus.folder() / "installed", "newer");
  letInstallerEnd(0);
  waitUntil([&] { return !click.isRunning() && manager().status.get() == InstallStatus::Case::enabled; });
  EXPECT_EQ(manager().lastError.get(), std::nullopt);
  waitUntil([&] { return !manager().isOtherBuildInstalled.get(); });

  const auto again = client->tasks.spawn(manager().reinstallIfStale(Reinstall::forced));
  waitUntil([&] { return !again.isRunning(); });
  EXPECT_EQ(lines(asked()), 1);
}

TEST_F(HelperInstallTest, aFailedReplacementOfADaemonThatWorksIsShown) {
  bus.installScriptedHelper();
  bus.reload();
  bringOtherBuild();
  startClient();
  ASSERT_EQ(readStatus(), 1);
  std::optional<std::string> shown;
  ownPage = [&] { shown = manager().lastError.get(); };

  EXPECT_TRUE(service().registerDaemon(AskedBy::user));
  letInstallerEnd(126);
  waitUntil([&] { return isLogged("service.register() failed: The password was not given."); });
  EXPECT_EQ(ownPageShown, 0);

  EXPECT_TRUE(service().registerDaemon(AskedBy::user));
  letInstallerEnd(1);
  waitUntil([&] { return ownPageShown == 1; });
  EXPECT_EQ(shown, "Couldn't set up the helper. Its installation failed with code 1.");
}

TEST_F(HelperInstallTest, aFailedFirstInstallationShowsNoPage) {
  bringOtherBuild();  // what is installed was left behind, and the bus does not know it
  startClient();
  ASSERT_EQ(readStatus(), 0);
  EXPECT_TRUE(service().isOtherBuildRegistered());
  EXPECT_TRUE(service().registerDaemon(AskedBy::user));
  letInstallerEnd(1);
  waitUntil([&] { return isLogged("service.register() failed: Its installation failed with code 1."); });
  EXPECT_EQ(ownPageShown, 0);
}

TEST_F(HelperInstallTest, withoutAnInstallerThereIsNothingToRegister) {
  startClient();
  ASSERT_EQ(readStatus(), 3);
  EXPECT_EQ(service().registerDaemon(AskedBy::user).error(),
            "The background helper is not part of this installation.");
}

TEST_F(HelperInstallTest, onlyTheUserCanStartTheInstallation) {
  addInstaller();
  startClient();
  ASSERT_EQ(readStatus(), 3);
  EXPECT_EQ(service().registerDaemon(AskedBy::program).error(),
            "The background helper is not installed yet.");
  EXPECT_EQ(service().status(), 3);
}

TEST_F(HelperInstallTest, approvalIsRequiredWhileTheInstallerAsks) {
  addInstaller();
  startClient();
  ASSERT_EQ(readStatus(), 3);
  EXPECT_TRUE(service().registerDaemon(AskedBy::user).has_value());
  EXPECT_EQ(service().status(), 2);
  waitUntil([&] { return lines(asked()) == 1; });
  // Neither a second press nor a repair starts another one.
  EXPECT_TRUE(service().registerDaemon(AskedBy::user).has_value());
  const auto repair = client->tasks.spawn(manager().reinstallIfStale(Reinstall::forced));
  waitUntil([&] { return !repair.isRunning(); });
  EXPECT_TRUE(
      isLogged("performReinstall: daemon awaiting approval; guiding to Settings, NOT re-registering"));

  bus.installScriptedHelper();
  bus.reload();
  letInstallerEnd(0);
  waitUntil([&] { return manager().status.get() == InstallStatus::Case::enabled; });
  EXPECT_EQ(manager().lastError.get(), std::nullopt);
  EXPECT_EQ(lines(asked()), 1);
}

TEST_F(HelperInstallTest, aFailedInstallerLeavesTheDaemonUnregisteredAndSaysWhy) {
  addInstaller();
  startClient();
  ASSERT_EQ(readStatus(), 3);
  const std::pair<int, const char*> rows[] = {
      {126, "Couldn't set up the helper. The password was not given."},
      {127, "Couldn't set up the helper. Its installation was not authorised."},
      {1, "Couldn't set up the helper. Its installation failed with code 1."}};
  for (const auto& [code, text] : rows) {
    manager().registerDaemon();
    EXPECT_EQ(manager().status.get(), InstallStatus::Case::requiresApproval);
    EXPECT_EQ(manager().lastError.get(), std::nullopt);
    letInstallerEnd(code);
    // A reading from before the end may arrive before the failure.
    waitUntil(
        [&] { return manager().status.get() == InstallStatus::Case::notFound && manager().lastError.get(); });
    EXPECT_EQ(manager().lastError.get(), text);
  }
}

TEST_F(HelperInstallTest, withoutAWayToAskForThePasswordTheRegistrationFails) {
  addInstaller();
  startClient();
  ASSERT_EQ(readStatus(), 3);
  std::filesystem::remove(bus.folder() / "bin/pkexec");
  setenv("PATH", (bus.folder() / "bin").c_str(), 1);
  manager().registerDaemon();
  waitUntil([&] {
    return manager().lastError.get() ==
           "Couldn't set up the helper. pkexec, which asks for the password, is not installed.";
  });
  waitUntil([&] { return manager().status.get() == InstallStatus::Case::notFound; });
}

TEST_F(HelperInstallTest, aMissingPasswordWindowIsDistinguishedFromARefusal) {
  addInstaller();
  startClient();
  ASSERT_EQ(readStatus(), 3);
  manager().registerDaemon();
  letInstallerEnd(127, "Error executing command as another user: No authentication agent found.");
  waitUntil([&] { return manager().lacksPrompt.get(); });
  EXPECT_EQ(manager().lastError.get(), "Couldn't set up the helper. No password window could be opened.");

  manager().registerDaemon();
  EXPECT_FALSE(manager().lacksPrompt.get());
  letInstallerEnd(127, "Error executing command as another user: Not authorized");
  waitUntil([&] { return manager().lastError.get().has_value(); });
  EXPECT_EQ(manager().lastError.get(), "Couldn't set up the helper. Its installation was not authorised.");
  EXPECT_FALSE(manager().lacksPrompt.get());
}

TEST_F(HelperInstallTest, unregisteringDoesNothingAndSucceeds) {
  startClient();
  bool succeeded = false;
  service().unregisterDaemon(OnceReply<std::expected<void, std::string>>(
      [&](const auto& result) { succeeded = result.has_value(); }));
  EXPECT_TRUE(succeeded);
}

}  // namespace
}  // namespace vorli
