#include "linux/bus/Library.h"
#include "tests/linux/helper/ClientFixture.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace vorli {
namespace {

/// The client with the real root daemon, under the shipped rules of the bus and with a scripted polkit.
struct RealHelperTest : ClientFixture {
  void SetUp() override {
    ASSERT_EQ(geteuid(), 0u) << "the daemon runs as root, and so has to this test";
    // A copy: without its rights, the daemon may not be able to see its program in a user's home.
    const auto program = bus.folder() / "vorli-helper";
    std::filesystem::copy_file(REAL_HELPER, program);
    bus.install(program.string());
    bus.applyShippedRules();
    bus.start();
    bus.startAuthority("polkit");
    startClient();
  }
  ~RealHelperTest() override {
    if (const pid_t pid = daemonPid(); pid > 0) ::kill(pid, SIGKILL);
  }

  pid_t daemonPid() const {
    const auto found = bus.ownerProcess("com.kv.vorli.helper");
    return found.value_or(-1);
  }

  /// The process's state as the kernel writes it: R, S, T and so on.
  static char stateOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    std::getline(file, text);
    const auto at = text.rfind(')');
    return at == std::string::npos ? '?' : text.at(at + 2);
  }
};

TEST_F(RealHelperTest, bothSidesSpeakTheSameContract) {
  EXPECT_TRUE(ping());
  EXPECT_EQ(resultOf(manager().versionWithTimeout(20.0)), "1.2.3");
  EXPECT_EQ(resultOf(manager().flushDNS()).exitCode, 0);
  EXPECT_EQ(resultOf(manager().moveLaunchAgentPlist("/etc/passwd", "/etc/passwd.vorli-disabled")).exitCode,
            1);

  const auto connection = client->transport.connect("com.kv.vorli.helper");
  connection->resume();
  std::optional<HelperReply> dump;
  std::string failure;
  connection->remoteObjectProxy([&](std::string text) { failure = std::move(text); })
      ->dumpBTM(OnceReply<HelperReply>(
          [&](HelperReply reply) { client->scheduler.post([&dump, reply] { dump = reply; }); }));
  waitUntil([&] { return dump.has_value(); });
  EXPECT_EQ(dump->exitCode, 203);
  EXPECT_EQ(failure, "");
}

TEST_F(RealHelperTest, onlyTheContractsContinueWakesAProcess) {
  const ChildProcess sleeper({"tail", "-f", "/dev/null"}, "/dev/null");
  sleeper.stop();
  waitUntil([&] { return stateOf(sleeper.pid()) == 'T'; });
  for (const int signal : {9, 15, 18}) {
    EXPECT_EQ(resultOf(manager().killPID(sleeper.pid(), signal)).exitCode, EINVAL) << signal;
    EXPECT_EQ(stateOf(sleeper.pid()), 'T') << signal;
  }
  EXPECT_EQ(resultOf(manager().killPID(sleeper.pid(), 19)).exitCode, 0);
  waitUntil([&] { return stateOf(sleeper.pid()) == 'S'; });
}

TEST_F(RealHelperTest, aKilledDaemonIsBackForTheNextCall) {
  for (int round = 0; round < 10; ++round) {
    ASSERT_TRUE(ping());
    const pid_t pid = daemonPid();
    ASSERT_GT(pid, 0);
    ::kill(pid, SIGKILL);
    waitUntil([&] { return daemonPid() != pid; });
  }
  EXPECT_TRUE(ping());
  EXPECT_EQ(log.count("XPC connection interrupted"), 0);  // no call was pending
}

// The bus passes on sixteen descriptors with any message; the daemon may have only a few open.
TEST_F(RealHelperTest, aCallWithOpenFilesDoesNotReachTheDaemon) {
  const auto connection = sdbus::createSystemBusConnection();
  const auto helper = linuxhost::bus::proxy(*connection, "com.kv.vorli.helper", "/com/kv/vorli/helper");
  const auto errorOf = [&](const char* interface, const char* method) -> std::string {
    try {
      helper->callMethod(method).onInterface(interface).withArguments(sdbus::UnixFd(STDIN_FILENO));
    } catch (const sdbus::Error& error) {
      return error.getName();
    }
    return "";
  };
  ASSERT_TRUE(ping());
  for (const char* method : {"Ping", "PurgeMemory", "KillPID", "MoveLaunchAgentPlist"})
    EXPECT_EQ(errorOf("com.kv.vorli.helper", method), "org.freedesktop.DBus.Error.AccessDenied") << method;
  EXPECT_EQ(errorOf("org.freedesktop.DBus.Peer", "Ping"), "org.freedesktop.DBus.Error.AccessDenied");
}

TEST_F(RealHelperTest, aHealthyDaemonNeedsNoRepair) {
  waitForStatus(1);
  ASSERT_TRUE(ping());  // starts the daemon, which may take longer than the repair waits for the version
  const auto handle = client->tasks.spawn(manager().reinstallIfStale(Reinstall::ifStale));
  waitUntil([&] { return !handle.isRunning(); });
  EXPECT_EQ(log.count("Helper healthy at v1.2.3; no reinstall needed"), 1);
}

}  // namespace
}  // namespace vorli
