#include "linux/startup/SystemStartupLists.h"
#include "linux/startup/SystemUnits.h"
#include "posix/FileDescriptor.h"
#include "tests/linux/helper/PrivateBus.h"
#include "tests/linux/helper/Waiting.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <vector>

namespace vorli {
namespace {

/// A service on the bus that answers calls as the test says.
class ScriptedService final : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    members.push_back(message.member().toStdString());
    arguments.push_back(message.arguments());
    mayAsk = message.isInteractiveAuthorizationAllowed();
    if (error.isEmpty()) {
      connection.send(message.createReply(answer));
    } else {
      connection.send(message.createErrorReply(error, QStringLiteral("no")));
    }
    return true;
  }

  std::vector<std::string> members;
  std::vector<QVariantList> arguments;
  bool mayAsk = false;
  QString error;
  QVariantList answer;
};

struct StartupBusesTest : testing::Test {
  StartupBusesTest() {
    bus.start();
    own = QDBusConnection::connectToBus(address(), QStringLiteral("scripted"));
    own.registerVirtualObject(QStringLiteral("/"), &service, QDBusConnection::SubPath);
  }
  ~StartupBusesTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("scripted")); }

  QString address() const {
    return QStringLiteral("unix:path=") + QString::fromStdString((bus.folder() / "socket").string());
  }
  void serve(const char* name) { EXPECT_TRUE(own.registerService(QString::fromLatin1(name))); }

  std::optional<ports::UnitReply> replyTo(void (linuxhost::SystemUnits::*call)(const std::string&,
                                                                               OnceReply<ports::UnitReply>)) {
    std::optional<ports::UnitReply> reply;
    linuxhost::SystemUnits units(address());
    (units.*call)("acme.service",
                  OnceReply<ports::UnitReply>([&](ports::UnitReply given) { reply = given; }));
    EXPECT_TRUE(waitUntil([&] { return reply.has_value(); }));
    return reply;
  }

  PrivateBus bus;
  ScriptedService service;
  QDBusConnection own{QString()};
};

TEST_F(StartupBusesTest, masksAndUnmasksByTheServiceManagerWhichMayAskTheUser) {
  serve("org.freedesktop.systemd1");
  EXPECT_EQ(replyTo(&linuxhost::SystemUnits::mask), ports::UnitReply::done);
  EXPECT_EQ(replyTo(&linuxhost::SystemUnits::unmask), ports::UnitReply::done);
  EXPECT_EQ(service.members, (std::vector<std::string>{"MaskUnitFiles", "UnmaskUnitFiles"}));
  ASSERT_EQ(service.arguments.size(), 2u);
  const QStringList units{QStringLiteral("acme.service")};
  EXPECT_EQ(service.arguments[0], (QVariantList{units, false, false}));
  EXPECT_EQ(service.arguments[1], (QVariantList{units, false}));
  EXPECT_TRUE(service.mayAsk);
}

TEST_F(StartupBusesTest, distinguishesARefusalFromAFailure) {
  serve("org.freedesktop.systemd1");
  for (const char* name : {"org.freedesktop.DBus.Error.AccessDenied",
                           "org.freedesktop.DBus.Error.InteractiveAuthorizationRequired"}) {
    service.error = QString::fromLatin1(name);
    EXPECT_EQ(replyTo(&linuxhost::SystemUnits::mask), ports::UnitReply::refused) << name;
  }
  service.error = QStringLiteral("org.freedesktop.DBus.Error.FileExists");
  EXPECT_EQ(replyTo(&linuxhost::SystemUnits::mask), ports::UnitReply::unavailable);
}

TEST_F(StartupBusesTest, withoutAServiceManagerNothingIsMasked) {
  EXPECT_EQ(replyTo(&linuxhost::SystemUnits::mask), ports::UnitReply::unavailable);
}

TEST_F(StartupBusesTest, withoutASystemBusNothingIsMasked) {
  linuxhost::SystemUnits units(QStringLiteral("unix:path=/nowhere"));
  std::optional<ports::UnitReply> reply;
  units.mask("acme.service",
             OnceReply<ports::UnitReply>([&reply](ports::UnitReply given) { reply = given; }));
  EXPECT_TRUE(waitUntil([&reply] { return reply.has_value(); }));
  EXPECT_EQ(reply, ports::UnitReply::unavailable);
}

TEST_F(StartupBusesTest, aHangingSystemBusDelaysNobody) {
  const auto path = (bus.folder() / "silent").string();
  const posix::FileDescriptor silent(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  ASSERT_LT(path.size(), sizeof place.sun_path);
  std::memcpy(place.sun_path, path.c_str(), path.size() + 1);
  ASSERT_EQ(bind(silent.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
  ASSERT_EQ(listen(silent.get(), 1), 0);

  linuxhost::SystemUnits units(QStringLiteral("unix:path=") + QString::fromStdString(path));
  std::optional<ports::UnitReply> reply;
  units.mask("acme.service",
             OnceReply<ports::UnitReply>([&reply](ports::UnitReply given) { reply = given; }));
  EXPECT_TRUE(waitUntil([&reply] { return reply.has_value(); }));
  EXPECT_EQ(reply, ports::UnitReply::unavailable);
}

TEST_F(StartupBusesTest, readsTheBackgroundPermissions) {
  using Permissions = QMap<QString, QStringList>;
  qDBusRegisterMetaType<Permissions>();
  serve("org.freedesktop.impl.portal.PermissionStore");
  const Permissions permissions{{QStringLiteral("org.acme.No"), {QStringLiteral("no")}},
                                {QStringLiteral("org.acme.None"), {}},
                                {QStringLiteral("org.acme.Yes"), {QStringLiteral("yes")}}};
  service.answer = {QVariant::fromValue(permissions), QVariant::fromValue(QDBusVariant(0))};

  std::vector<ports::BackgroundPermission> found;
  std::atomic<bool> isDone = false;
  std::thread worker([&] {  // the call blocks, and this thread answers it
    found = linuxhost::SystemStartupLists(address().toStdString()).backgroundPermissions();
    isDone = true;
  });
  EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
  worker.join();
  EXPECT_EQ(found, (std::vector<ports::BackgroundPermission>{
                       {"org.acme.No", false}, {"org.acme.None", false}, {"org.acme.Yes", true}}));
  ASSERT_EQ(service.arguments.size(), 1u);
  EXPECT_EQ(service.arguments[0], (QVariantList{QStringLiteral("background"), QStringLiteral("background")}));
}

TEST_F(StartupBusesTest, withoutAPortalThereAreNoPermissions) {
  EXPECT_TRUE(linuxhost::SystemStartupLists(address().toStdString()).backgroundPermissions().empty());
  EXPECT_TRUE(linuxhost::SystemStartupLists("unix:path=/nowhere").backgroundPermissions().empty());
}

}  // namespace
}  // namespace vorli
