#include "tests/fakes/ManualScheduler.h"
#include "tests/ui/linux/PrivateSessionBus.h"
#include "ui/linux/UserNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

const QString serverName = QStringLiteral("org.freedesktop.Notifications");
const QString serverPath = QStringLiteral("/org/freedesktop/Notifications");

/// A notification server as a test describes it, on its own connection.
class ScriptedServer final : public QDBusVirtualObject {
 public:
  explicit ScriptedServer(PrivateSessionBus& bus) : buses_(bus), bus_(bus.connect()) {
    bus_.registerVirtualObject(serverPath, this);
    bus_.interface()->registerService(serverName, QDBusConnectionInterface::QueueService);
  }
  // Releases the name first: a call that reached the bus before it noticed the end of the connection would
  // get another error.
  ~ScriptedServer() override {
    bus_.interface()->unregisterService(serverName);
    buses_.disconnect(bus_);
  }

  QStringList capabilities{"actions", "body", "body-markup"};
  bool refuses = false;
  bool leavesEarly = false;  // after the first answer
  bool isReady = true;
  std::vector<QVariantList> notices;  // the arguments of each Notify

  unsigned lastID() const { return static_cast<unsigned>(notices.size()); }
  void press(unsigned id, const QString& key) const { signal("ActionInvoked", {id, key}); }
  void close(unsigned id) const { signal("NotificationClosed", {id, 2u}); }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    const auto answer = [&](const QVariantList& values) { bus.send(message.createReply(values)); };
    if (message.member() == "GetCapabilities") {
      answer({capabilities});
      if (leavesEarly) bus_.interface()->unregisterService(serverName);
    } else if (message.member() == "GetServerInformation" && !isReady) {
      bus.send(message.createErrorReply("org.example.NotReady", "still starting"));
    } else if (message.member() == "GetServerInformation") {
      answer({"scripted", "tests", "1", "1.2"});
    } else if (message.member() == "Notify" && refuses) {
      bus.send(message.createErrorReply("org.example.Full", "no room"));
    } else if (message.member() == "Notify") {
      notices.push_back(message.arguments());
      answer({lastID()});
    } else {
      return false;
    }
    return true;
  }

 private:
  void signal(const char* name, const QVariantList& values) const {
    auto message = QDBusMessage::createSignal(serverPath, serverName, QLatin1String(name));
    message.setArguments(values);
    bus_.send(message);
  }

  PrivateSessionBus& buses_;
  QDBusConnection bus_;
};

struct RecordingNotificationDelegate final : ports::NotificationDelegate {
  std::vector<std::pair<std::string, std::string>> responses;  // category and action

  std::uint32_t presentationOptions() override { return 18; }
  void didReceive(ports::NotificationResponse response, UniqueFunction<void()> completion) override {
    responses.emplace_back(response.categoryIdentifier, response.actionIdentifier);
    completion();
  }
};

struct UserNotificationCenterTest : testing::Test {
  UserNotificationCenterTest() {
    center->setDelegate(&delegate);
    center->setNotificationCategories(
        {{"polish", {{"VorliClearNow", "Polish Now", 4}}},
         {"broken",
          {{"VorliReinstallHelper", "Reinstall", 4}, {"VorliOpenLoginItems", "Open Settings", 4}}}});
  }

  using Result = std::expected<void, std::string>;

  PrivateSessionBus bus;
  fakes::ManualScheduler scheduler;
  std::unique_ptr<ScriptedServer> server = std::make_unique<ScriptedServer>(bus);
  RecordingNotificationDelegate delegate;
  std::optional<UserNotificationCenter> center{std::in_place, bus.connect(), scheduler};

  Result post(const std::string& category = "polish") {
    std::optional<Result> result;
    center->add(
        {.identifier = "1", .title = "Vorli", .body = "Full & <warm>.", .categoryIdentifier = category},
        OnceReply<Result>([&](Result given) { result = std::move(given); }));
    loopUntil([&] { return result.has_value(); });
    return result.value_or(std::unexpected("no reply"));
  }
  std::optional<ports::NotificationAuthorization> authorization;
  void ask() {
    authorization.reset();
    center->requestAuthorization(6, OnceReply<ports::NotificationAuthorization>(
                                        [this](auto answer) { authorization = std::move(answer); }));
  }
  /// Waits until everything that was sent so far has been handled.
  void settle() {
    const auto count = server->notices.size();
    EXPECT_TRUE(post("settled").has_value());
    EXPECT_EQ(server->notices.size(), count + 1);
  }
  bool stopsListening() {
    return loopUntil([this] { return !center->isListening(); });
  }
  using Responses = std::vector<std::pair<std::string, std::string>>;
};

TEST_F(UserNotificationCenterTest, showsAPassiveNoticeWithItsButtonsAndIcon) {
  EXPECT_TRUE(post().has_value());
  ASSERT_EQ(server->notices.size(), 1u);
  const auto& sent = server->notices[0];
  EXPECT_EQ(sent[0].toString(), "Vorli");
  EXPECT_EQ(sent[1].toUInt(), 0u);
  EXPECT_EQ(sent[2].toString(), "com.kv.vorli");
  EXPECT_EQ(sent[3].toString(), "Vorli");
  EXPECT_EQ(sent[4].toString(), "Full &amp; &lt;warm&gt;.");
  EXPECT_EQ(sent[5].toStringList(), (QStringList{"VorliClearNow", "Polish Now", "default", ""}));
  const auto hints = qdbus_cast<QVariantMap>(sent[6]);
  EXPECT_EQ(hints["urgency"].userType(), QMetaType::UChar);
  EXPECT_EQ(hints["urgency"].toUInt(), 0u);
  EXPECT_EQ(hints["desktop-entry"].toString(), "com.kv.vorli");
  EXPECT_TRUE(hints["suppress-sound"].toBool());
  EXPECT_EQ(sent[7].toInt(), -1);
}

TEST_F(UserNotificationCenterTest, aServerThatLeavesBeforeTheNoticeIsAnError) {
  server->leavesEarly = true;
  EXPECT_FALSE(post().has_value());
  EXPECT_TRUE(stopsListening());
}

TEST_F(UserNotificationCenterTest, eachCategoryHasItsOwnButtons) {
  EXPECT_TRUE(post("broken").has_value());
  EXPECT_EQ(server->notices[0][5].toStringList(),
            (QStringList{"VorliReinstallHelper", "Reinstall", "VorliOpenLoginItems", "Open Settings",
                         "default", ""}));
}

TEST_F(UserNotificationCenterTest, aServerWithoutButtonsGetsThePlainClickAndPlainWords) {
  server->capabilities = {"body"};
  EXPECT_TRUE(post().has_value());
  EXPECT_EQ(server->notices[0][4].toString(), "Full & <warm>.");
  EXPECT_EQ(server->notices[0][5].toStringList(), (QStringList{"default", ""}));
  server->press(1, "default");
  loopUntil([&] { return !delegate.responses.empty(); });
  EXPECT_EQ(delegate.responses,
            (Responses{{"polish", std::string(ports::notificationDefaultActionIdentifier)}}));
}

TEST_F(UserNotificationCenterTest, aPressedButtonAnswersOnceForItsCategory) {
  EXPECT_TRUE(post("polish").has_value());
  EXPECT_TRUE(post("broken").has_value());
  server->press(2, "VorliReinstallHelper");
  server->press(2, "VorliReinstallHelper");
  server->close(2);
  server->press(1, "VorliClearNow");
  settle();
  EXPECT_EQ(delegate.responses, (Responses{{"broken", "VorliReinstallHelper"}, {"polish", "VorliClearNow"}}));
}

TEST_F(UserNotificationCenterTest, closingANoticeAnswersNothing) {
  EXPECT_TRUE(post("broken").has_value());
  server->close(1);
  server->press(1, "VorliReinstallHelper");
  settle();
  EXPECT_EQ(delegate.responses, Responses{});
}

TEST_F(UserNotificationCenterTest, noticesOfOtherProgramsAreIgnored) {
  EXPECT_TRUE(post().has_value());
  server->press(7, "VorliClearNow");
  settle();
  EXPECT_EQ(delegate.responses, Responses{});
}

TEST_F(UserNotificationCenterTest, listensOnlyWhileANoticeIsThere) {
  EXPECT_FALSE(center->isListening());
  EXPECT_TRUE(post().has_value());
  EXPECT_TRUE(center->isListening());
  server->press(1, "VorliClearNow");
  EXPECT_TRUE(stopsListening());
  EXPECT_TRUE(post().has_value());
  EXPECT_TRUE(center->isListening());
  server->close(2);
  EXPECT_TRUE(stopsListening());
}

TEST_F(UserNotificationCenterTest, aRestartedServerAnswersToo) {
  EXPECT_TRUE(post("broken").has_value());
  server.reset();
  EXPECT_TRUE(stopsListening());  // its notice has disappeared with it
  server = std::make_unique<ScriptedServer>(bus);
  EXPECT_TRUE(post("polish").has_value());
  server->press(1, "VorliClearNow");  // the number of the old notice, and of the new one
  loopUntil([&] { return !delegate.responses.empty(); });
  EXPECT_EQ(delegate.responses, (Responses{{"polish", "VorliClearNow"}}));
}

TEST_F(UserNotificationCenterTest, aRestartedServersNumbersBelongToOtherNotices) {
  EXPECT_TRUE(post("broken").has_value());
  auto next = std::make_unique<ScriptedServer>(bus);  // waits for the name
  server.reset();
  server = std::move(next);
  EXPECT_TRUE(stopsListening());
  EXPECT_TRUE(post("polish").has_value());
  EXPECT_TRUE(post("polish").has_value());
  server->press(2, "VorliClearNow");
  settle();
  EXPECT_EQ(delegate.responses, (Responses{{"polish", "VorliClearNow"}}));
}

TEST_F(UserNotificationCenterTest, aRefusedNoticeIsAnErrorWithTheServersText) {
  server->refuses = true;
  const auto result = post();
  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(), "no room");
  EXPECT_TRUE(stopsListening());
}

TEST_F(UserNotificationCenterTest, withoutAServerAPostFails) {
  server.reset();
  const auto result = post();
  ASSERT_FALSE(result.has_value());
  EXPECT_NE(result.error().find("org.freedesktop.Notifications"), std::string::npos);
}

TEST_F(UserNotificationCenterTest, withoutABusAPostFails) {
  center.reset();
  center.emplace(QDBusConnection("no such connection"), scheduler);
  EXPECT_FALSE(post().has_value());
  ask();
  loopUntil([&] { return authorization.has_value(); });
  EXPECT_FALSE(authorization->granted);
  EXPECT_EQ(authorization->error, "There is no session bus.");
}

TEST_F(UserNotificationCenterTest, isGrantedWhenAServerAnswers) {
  ask();
  loopUntil([&] { return authorization.has_value(); });
  EXPECT_TRUE(authorization->granted);
  EXPECT_EQ(authorization->error, std::nullopt);
}

TEST_F(UserNotificationCenterTest, isGrantedWhenAServerComesInTime) {
  server.reset();
  ask();
  loopUntil([&] { return scheduler.pendingTimers() == 1; });
  scheduler.advance(9.9);
  EXPECT_FALSE(authorization.has_value());
  server = std::make_unique<ScriptedServer>(bus);
  loopUntil([&] { return authorization.has_value(); });
  EXPECT_TRUE(authorization->granted);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  scheduler.advance(10.0);
}

TEST_F(UserNotificationCenterTest, isRefusedWithTheReasonWhenNoServerComes) {
  server.reset();
  ask();
  loopUntil([&] { return scheduler.pendingTimers() == 1; });
  scheduler.advance(9.9);
  EXPECT_FALSE(authorization.has_value());
  scheduler.advance(0.1);
  ASSERT_TRUE(loopUntil([&] { return authorization.has_value(); }));
  EXPECT_FALSE(authorization->granted);
  EXPECT_NE(authorization->error->find("org.freedesktop.Notifications"), std::string::npos)
      << *authorization->error;
}

TEST_F(UserNotificationCenterTest, aServerThatWasNotReadyIsAskedAgain) {
  server->isReady = false;
  ask();
  loopUntil([&] { return scheduler.pendingTimers() == 1; });
  server->isReady = true;
  scheduler.advance(10.0);
  ASSERT_TRUE(loopUntil([&] { return authorization.has_value(); }));
  EXPECT_TRUE(authorization->granted);
}

TEST_F(UserNotificationCenterTest, pendingRequestsEndWithIt) {
  server.reset();
  ask();
  loopUntil([&] { return scheduler.pendingTimers() == 1; });
  center->add({}, OnceReply<Result>([](const Result&) { ADD_FAILURE(); }));
  center.reset();
  scheduler.advance(10.0);
  EXPECT_FALSE(authorization.has_value());
}

}  // namespace
}  // namespace vorli::ui
