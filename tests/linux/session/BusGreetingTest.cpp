#include "linux/session/BusGreeting.h"

#include <QByteArray>
#include <cstring>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace vorli {
namespace {

using linuxhost::greetsBack;

constexpr double ample = 30.0;
constexpr double brief = 0.05;

/// A local socket that listens. `serve` handles its callers on a thread.
class Listener {
 public:
  explicit Listener(const std::string& name, std::function<void(int)> serve = nullptr)
      : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.data(), name.size());
    const auto length = offsetof(sockaddr_un, sun_path) + name.size() + (name.front() == '\0' ? 0 : 1);
    EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), static_cast<socklen_t>(length)), 0);
    EXPECT_EQ(listen(socket_, 0), 0);
    if (!serve) return;
    thread_ = std::thread([this, serve = std::move(serve)] {
      const int caller = accept(socket_, nullptr, nullptr);
      serve(caller);
      close(caller);
    });
  }
  ~Listener() {
    if (thread_.joinable()) thread_.join();
    close(socket_);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

 private:
  int socket_;
  std::thread thread_;
};

struct BusGreetingTest : testing::Test {
  BusGreetingTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorli-bus-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~BusGreetingTest() override { std::filesystem::remove_all(folder); }

  /// Reads up to the end of the opening line, then answers.
  std::function<void(int)> answering(const std::string& text) {
    return [this, text](int caller) {
      char byte = 0;
      while (byte != '\n' && read(caller, &byte, 1) == 1) heard += byte;
      EXPECT_EQ(write(caller, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    };
  }

  std::string folder, heard;
};

TEST_F(BusGreetingTest, aBusThatAnswersIsReachable) {
  {
    const Listener bus(folder + "/bus", answering("OK 1234\r\n"));
    EXPECT_TRUE(greetsBack("unix:path=" + folder + "/bus,guid=1234", ample));
  }
  std::string uid;
  for (const char digit : std::to_string(getuid())) uid += std::string("3") + digit;
  EXPECT_EQ(heard, std::string(1, '\0') + "AUTH EXTERNAL " + uid + "\r\n");
}

TEST_F(BusGreetingTest, aBusThatRefusesOrHangsUpIsLeftToTheLibraries) {
  {
    const Listener bus(folder + "/no", answering("REJECTED EXTERNAL\r\n"));
    EXPECT_TRUE(greetsBack("unix:path=" + folder + "/no", ample));
  }
  const Listener bus(folder + "/up", [](int) {});
  EXPECT_TRUE(greetsBack("unix:path=" + folder + "/up", ample));
}

TEST_F(BusGreetingTest, aSilentBusIsUnreachable) {
  const Listener bus(folder + "/bus");
  EXPECT_FALSE(greetsBack("unix:path=" + folder + "/bus", brief));
  // The queue is full now, so the next connection is not even accepted.
  EXPECT_FALSE(greetsBack("unix:path=" + folder + "/bus;unix:path=/elsewhere", brief));
  EXPECT_FALSE(greetsBack("unix:guid=1,path=" + folder + "/bus", brief));
}

TEST_F(BusGreetingTest, abstractAndEscapedNamesAreUnderstood) {
  const std::string name = "vorli-bus-" + std::to_string(getpid());
  const Listener silent('\0' + name);
  EXPECT_FALSE(greetsBack("unix:abstract=" + name, brief));
  const Listener alsoSilent(folder + "/a bus");
  EXPECT_FALSE(greetsBack("unix:path=" + folder + "/a%20bus", brief));
}

TEST_F(BusGreetingTest, otherAddressesAreLeftToTheLibraries) {
  for (const auto& address :
       {std::string(), std::string("unix:path=/nonexistent"), "unix:path=" + folder,
        std::string("autolaunch:"), std::string("tcp:host=localhost,port=1"), std::string("unix:path=%zz"),
        std::string("unix:path=/a%2"), std::string("unix:"), std::string("unix:path="),
        "unix:path=/" + std::string(200, 'x')}) {
    EXPECT_TRUE(greetsBack(address, brief)) << address;
  }
}

TEST_F(BusGreetingTest, theAddressIsFromTheSessionOrInTheRuntimeFolder) {
  const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS"), runtime = qgetenv("XDG_RUNTIME_DIR");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/a");
  qputenv("XDG_RUNTIME_DIR", "/run/user/7");
  EXPECT_EQ(linuxhost::sessionBusAddress(), "unix:path=/a");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "");
  EXPECT_EQ(linuxhost::sessionBusAddress(), "unix:path=/run/user/7/bus");
  qunsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(linuxhost::sessionBusAddress(), "");
  address.isNull() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS") : qputenv("DBUS_SESSION_BUS_ADDRESS", address);
  runtime.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", runtime);
}

}  // namespace
}  // namespace vorli
