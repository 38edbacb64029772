#include "linux/daemon/DaemonLog.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

/// A log service that reads datagrams from its socket.
class LogService {
 public:
  explicit LogService(const std::string& path)
      : path_(path), socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    EXPECT_EQ(::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  ~LogService() { ::unlink(path_.c_str()); }
  LogService(const LogService&) = delete;
  LogService& operator=(const LogService&) = delete;

  /// The next line without the writer's name, or empty.
  std::string next() {
    char bytes[512];
    const auto size = ::recv(socket_.get(), bytes, sizeof bytes, 0);
    const std::string line(bytes, size > 0 ? static_cast<std::size_t>(size) : 0);
    const auto name = line.find("]: ");
    return name == std::string::npos ? line : line.substr(name + 3);
  }

 private:
  const std::string path_;
  posix::FileDescriptor socket_;
};

struct DaemonLogTest : testing::Test {
  void SetUp() override {
    std::string name = std::filesystem::temp_directory_path() / "vorli-log-XXXXXX";
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder = name;
    path = name + "/log";
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  std::filesystem::path folder;
  std::string path;
};

TEST_F(DaemonLogTest, aRestartedLogServiceGetsTheNextLine) {
  std::optional<LogService> service(path);
  DaemonLog log(StartContext{}, path);
  log.write(DaemonLog::Level::notice, "one");
  EXPECT_EQ(service->next(), "one");

  service.reset();
  service.emplace(path);
  log.write(DaemonLog::Level::notice, "two");
  EXPECT_EQ(service->next(), "two");
  EXPECT_EQ(service->next(), "");
}

TEST_F(DaemonLogTest, linesWithoutALogServiceAreCountedUntilOneIsBack) {
  std::optional<LogService> service(path);
  DaemonLog log(StartContext{}, path);
  service.reset();
  log.write(DaemonLog::Level::notice, "one");
  log.write(DaemonLog::Level::notice, "two");

  service.emplace(path);
  log.write(DaemonLog::Level::notice, "three");
  EXPECT_EQ(service->next(), "2 lines lost");
  EXPECT_EQ(service->next(), "three");
}

TEST_F(DaemonLogTest, aStreamWhoseReaderHasGoneIsReplacedByTheLogSocket) {
  LogService service(path);
  int ends[2];
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  posix::FileDescriptor reader(ends[0]), writer(ends[1]);
  struct stat status {};
  ASSERT_EQ(::fstat(writer.get(), &status), 0);
  const posix::FileDescriptor standardError(::dup(STDERR_FILENO));
  ASSERT_EQ(::dup2(writer.get(), STDERR_FILENO), STDERR_FILENO);
  DaemonLog log({.startedByServiceManager = true,
                 .journalStream = std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino)},
                path);

  log.write(DaemonLog::Level::warning, "one");
  char bytes[64];
  const auto size = ::recv(reader.get(), bytes, sizeof bytes, MSG_DONTWAIT);
  reader = posix::FileDescriptor();
  log.write(DaemonLog::Level::warning, "two");
  ::dup2(standardError.get(), STDERR_FILENO);

  EXPECT_EQ(std::string(bytes, size > 0 ? static_cast<std::size_t>(size) : 0), "<4>one\n");
  EXPECT_EQ(service.next(), "two");
}

}  // namespace
}  // namespace vorli::linuxhost
