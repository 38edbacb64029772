#include "ports/GlobalHotkeys.h"
#include "tests/ui/linux/PrivateSessionBus.h"
#include "ui/linux/PortalShortcut.h"
#include "ui/linux/ShortcutsPortal.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QStringList>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString shortcutsInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

constexpr std::uint32_t keyC = 8, optionShift = 0xA00;

/// A desktop portal whose user decides as a test says.
class ScriptedPortal final : public QDBusVirtualObject {
 public:
  explicit ScriptedPortal(PrivateSessionBus& bus) : buses_(bus), bus_(bus.connect()) {
    bus_.registerVirtualObject("/", this, QDBusConnection::SubPath);
    bus_.registerService(portalName);
  }
  ~ScriptedPortal() override { buses_.disconnect(bus_); }

  bool hasShortcuts = true;
  unsigned response = 0;
  bool reportsBound = true;
  bool leavesOut = false;  // the user removes the requested key
  bool holdsBack = false;  // whether sessions wait for `answer`
  std::vector<std::string> calls;
  PortalShortcuts bound;
  QString session;
  QStringList closed;

  /// Answers the requests for sessions that were held back, in order.
  void answer() {
    for (const auto& tell : std::exchange(heldBack_, {})) tell();
  }

  void activate(const QString& inSession, const QString& id) const {
    send(portalPath, shortcutsInterface, "Activated",
         {QVariant::fromValue(QDBusObjectPath(inSession)), id, 5ULL, QVariantMap()});
  }

  void closeSession() const { send(session, "org.freedesktop.portal.Session", "Closed", {QVariantMap()}); }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    calls.push_back(message.member().toStdString());
    if (message.member() == "Close") {
      closed << message.path();
      return true;
    }
    if (!hasShortcuts) return false;
    const auto options = qdbus_cast<QVariantMap>(message.arguments().last());
    QString sender = message.service().mid(1);
    const QString request =
        portalPath + "/request/" + sender.replace('.', '_') + "/" + options["handle_token"].toString();
    bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    QVariantMap results;
    if (message.member() == "CreateSession") {
      session = portalPath + "/session/x/" + options["session_handle_token"].toString();
      results["session_handle"] = session;
    } else {
      bound = qdbus_cast<PortalShortcuts>(message.arguments()[1]);
      if (reportsBound) results["shortcuts"] = QVariant::fromValue(leavesOut ? PortalShortcuts() : bound);
    }
    const auto tell = [this, request, results] {
      send(request, "org.freedesktop.portal.Request", "Response", {response, results});
    };
    if (holdsBack && message.member() == "CreateSession") {
      heldBack_.push_back(tell);
    } else {
      tell();
    }
    return true;
  }

 private:
  void send(const QString& path, const QString& interface, const char* name,
            const QVariantList& values) const {
    auto message = QDBusMessage::createSignal(path, interface, QLatin1String(name));
    message.setArguments(values);
    bus_.send(message);
  }

  PrivateSessionBus& buses_;
  QDBusConnection bus_;
  std::vector<std::function<void()>> heldBack_;
};

struct ShortcutsPortalTest : testing::Test {
  PrivateSessionBus bus;
  std::unique_ptr<ScriptedPortal> service = std::make_unique<ScriptedPortal>(bus);
  int presses = 0;
  std::vector<std::int32_t> refusals;  // with a 0 for a key that works again
  std::optional<ShortcutsPortal> portal;

  ShortcutsPortalTest() { make(bus.connect()); }
  ~ShortcutsPortalTest() override { portal.reset(); }

  void make(const QDBusConnection& connection) {
    portal.emplace(
        connection, [this] { ++presses; }, [this](std::int32_t code) { refusals.push_back(code); });
  }
  void bindAndWait() {
    portal->bind(keyC, optionShift);
    loopUntil([this] { return !service->bound.isEmpty(); });
  }
  void restartPortal() {
    service.reset();
    service = std::make_unique<ScriptedPortal>(bus);
  }
  void expectRefusal(std::int32_t code) {
    portal->bind(keyC, optionShift);
    loopUntil([this] { return !refusals.empty(); });
    EXPECT_EQ(refusals, std::vector{code});
  }
};

TEST_F(ShortcutsPortalTest, bindsTheKeyUnderItsNameAndReportsItsPresses) {
  bindAndWait();
  ASSERT_EQ(service->bound.size(), 1);
  EXPECT_EQ(service->bound[0].id, "polish");
  EXPECT_EQ(service->bound[0].options["preferred_trigger"].toString(), "ALT+SHIFT+c");
  EXPECT_EQ(service->bound[0].options["description"].toString(), "Polish Now");
  service->activate(service->session, "polish");
  loopUntil([this] { return presses == 1; });
  EXPECT_TRUE(refusals.empty());
}

TEST_F(ShortcutsPortalTest, pressesOfOtherSessionsAndKeysAreNotOurs) {
  bindAndWait();
  service->activate("/another/session", "polish");
  service->activate(service->session, "another key");
  service->activate(service->session, "polish");
  loopUntil([this] { return presses > 0; });
  EXPECT_EQ(presses, 1);
}

TEST_F(ShortcutsPortalTest, aReleaseClosesTheSession) {
  bindAndWait();
  portal->release();
  loopUntil([this] { return service->calls.back() == "Close"; });
  portal->release();
  EXPECT_EQ(presses, 0);
}

TEST_F(ShortcutsPortalTest, aSessionThatIsCreatedAfterTheReleaseIsClosed) {
  service->holdsBack = true;
  portal->bind(keyC, optionShift);
  loopUntil([this] { return service->calls.size() == 1; });
  portal->release();
  service->answer();
  loopUntil([this] { return !service->closed.isEmpty(); });
  EXPECT_EQ(service->closed, QStringList{service->session});
  EXPECT_EQ(service->calls, (std::vector<std::string>{"CreateSession", "Close"}));
  EXPECT_TRUE(refusals.empty());
}

TEST_F(ShortcutsPortalTest, aKeyThatIsChangedDuringTheCreationLeavesOneSession) {
  service->holdsBack = true;
  portal->bind(keyC, optionShift);
  loopUntil([this] { return service->calls.size() == 1; });
  const QString first = service->session;
  portal->bind(49, 0x1100);
  loopUntil([this] { return service->calls.size() == 2; });
  service->answer();
  loopUntil([this] { return service->closed.size() == 1 && !service->bound.isEmpty(); });
  EXPECT_EQ(service->closed, QStringList{first});
  EXPECT_EQ(service->bound[0].options["preferred_trigger"].toString(), "CTRL+LOGO+space");
  service->activate(service->session, "polish");
  loopUntil([this] { return presses == 1; });
}

TEST_F(ShortcutsPortalTest, aRefusalAfterTheReleaseIsNotReported) {
  service->hasShortcuts = false;
  portal->bind(keyC, optionShift);
  portal->release();
  loopUntil([this] { return service->calls.size() == 1; });
  service->hasShortcuts = true;
  bindAndWait();
  EXPECT_TRUE(refusals.empty());
}

TEST_F(ShortcutsPortalTest, anotherKeyTakesTheFirstOnesPlace) {
  bindAndWait();
  service->bound.clear();
  portal->bind(49, 0x1100);
  loopUntil([this] { return !service->bound.isEmpty(); });
  EXPECT_EQ(service->bound[0].options["preferred_trigger"].toString(), "CTRL+LOGO+space");
  service->activate(service->session, "polish");
  loopUntil([this] { return presses == 1; });
}

TEST_F(ShortcutsPortalTest, aUserWhoDeclinesIsReportedAsARefusal) {
  service->response = 1;
  expectRefusal(ports::hotkeyDeclined);
}

TEST_F(ShortcutsPortalTest, aPortalThatEndsTheQuestionIsReportedAsARefusal) {
  service->response = 2;
  expectRefusal(ports::hotkeyDeclined);
}

TEST_F(ShortcutsPortalTest, omittingTheKeyIsReportedAsARefusal) {
  service->leavesOut = true;
  expectRefusal(ports::hotkeyDeclined);
  loopUntil([this] { return service->calls.back() == "Close"; });
}

TEST_F(ShortcutsPortalTest, aPortalNeedNotNameTheBoundKey) {
  service->reportsBound = false;
  bindAndWait();
  service->activate(service->session, "polish");
  loopUntil([this] { return presses == 1; });
  EXPECT_TRUE(refusals.empty());
}

TEST_F(ShortcutsPortalTest, aSessionThatTheDesktopEndsHasNoGlobalKeys) {
  bindAndWait();
  service->closeSession();
  loopUntil([this] { return !refusals.empty(); });
  EXPECT_EQ(refusals, std::vector{ports::hotkeyUnavailable});
}

TEST_F(ShortcutsPortalTest, theKeyIsLostWithThePortalAndBoundAgainWhenItRestarts) {
  bindAndWait();
  service.reset();
  loopUntil([this] { return !refusals.empty(); });
  EXPECT_EQ(refusals, std::vector{ports::hotkeyUnavailable});

  service = std::make_unique<ScriptedPortal>(bus);
  loopUntil([this] { return refusals.size() == 2; });
  EXPECT_EQ(refusals, (std::vector{ports::hotkeyUnavailable, 0}));
  EXPECT_EQ(service->calls, (std::vector<std::string>{"CreateSession", "BindShortcuts"}));
  EXPECT_EQ(service->bound[0].options["preferred_trigger"].toString(), "ALT+SHIFT+c");
  service->activate(service->session, "polish");
  loopUntil([this] { return presses == 1; });
}

TEST_F(ShortcutsPortalTest, theKeyIsBoundWhenThePortalStartsLate) {
  service.reset();
  expectRefusal(ports::hotkeyUnavailable);
  service = std::make_unique<ScriptedPortal>(bus);
  loopUntil([this] { return refusals.size() == 2; });
  EXPECT_EQ(refusals.back(), 0);
}

TEST_F(ShortcutsPortalTest, aRestartedPortalDoesNotAskAUserWhoDeclined) {
  const auto connection = bus.connect();
  make(connection);
  service->response = 1;
  expectRefusal(ports::hotkeyDeclined);
  QDBusServiceWatcher owners(portalName, connection, QDBusServiceWatcher::WatchForRegistration);
  bool isBack = false;
  QObject::connect(&owners, &QDBusServiceWatcher::serviceRegistered, [&isBack] { isBack = true; });
  restartPortal();
  loopUntil([&isBack] { return isBack; });
  QCoreApplication::processEvents();
  bindAndWait();
  EXPECT_EQ(service->calls, (std::vector<std::string>{"CreateSession", "BindShortcuts"}));
  EXPECT_EQ(refusals, std::vector{ports::hotkeyDeclined});
}

TEST_F(ShortcutsPortalTest, aPortalWithoutShortcutsHasNoGlobalKeys) {
  service->hasShortcuts = false;
  expectRefusal(ports::hotkeyUnavailable);
}

TEST_F(ShortcutsPortalTest, noPortalHasNoGlobalKeys) {
  service.reset();
  expectRefusal(ports::hotkeyUnavailable);
}

TEST_F(ShortcutsPortalTest, noBusHasNoGlobalKeys) {
  make(QDBusConnection("no such connection"));
  expectRefusal(ports::hotkeyUnavailable);
}

TEST_F(ShortcutsPortalTest, writesEveryKeyInThePortalsNotation) {
  EXPECT_EQ(ShortcutsPortal::triggerText(8, 0x1B00), "CTRL+ALT+SHIFT+LOGO+c");
  EXPECT_EQ(ShortcutsPortal::triggerText(29, 0x100), "LOGO+0");
  EXPECT_EQ(ShortcutsPortal::triggerText(36, 0x100), "LOGO+Return");
  EXPECT_EQ(ShortcutsPortal::triggerText(48, 0x800), "ALT+Tab");
}

}  // namespace
}  // namespace vorli::ui
