#include "tests/ui/linux/PrivateSessionBus.h"
#include "ui/linux/PortalNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QList>
#include <expected>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

const QString noticesOfPortal = QStringLiteral("org.freedesktop.portal.Notification");

/// The part of a desktop portal that shows notices.
class ScriptedNoticePortal final : public QDBusVirtualObject {
 public:
  explicit ScriptedNoticePortal(PrivateSessionBus& bus) : buses_(bus), bus_(bus.connect()) {
    bus_.registerVirtualObject("/org/freedesktop/portal/desktop", this);
    bus_.registerService("org.freedesktop.portal.Desktop");
  }
  ~ScriptedNoticePortal() override { buses_.disconnect(bus_); }

  bool hasNotices = true;
  std::vector<QString> identifiers;
  std::vector<QVariantMap> notices;

  void press(const QString& identifier, const QString& action) const {
    auto message =
        QDBusMessage::createSignal("/org/freedesktop/portal/desktop", noticesOfPortal, "ActionInvoked");
    message << identifier << action << QVariantList();
    bus_.send(message);
  }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (!hasNotices) {
      bus.send(message.createErrorReply("org.freedesktop.DBus.Error.UnknownInterface", "no notices here"));
      return true;
    }
    if (message.member() == "Get") {
      bus.send(message.createReply(QVariant::fromValue(QDBusVariant(2u))));
      return true;
    }
    if (message.member() != "AddNotification") return false;
    identifiers.push_back(message.arguments()[0].toString());
    notices.push_back(qdbus_cast<QVariantMap>(message.arguments()[1]));
    bus.send(message.createReply());
    return true;
  }

 private:
  PrivateSessionBus& buses_;
  QDBusConnection bus_;
};

struct PortalResponses final : ports::NotificationDelegate {
  std::vector<std::pair<std::string, std::string>> all;  // category and action

  std::uint32_t presentationOptions() override { return 18; }
  void didReceive(ports::NotificationResponse response, UniqueFunction<void()> completion) override {
    all.emplace_back(response.categoryIdentifier, response.actionIdentifier);
    completion();
  }
};

struct PortalNotificationCenterTest : testing::Test {
  PortalNotificationCenterTest() { make(bus.connect()); }

  using Result = std::expected<void, std::string>;
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  PrivateSessionBus bus;
  std::unique_ptr<ScriptedNoticePortal> portal = std::make_unique<ScriptedNoticePortal>(bus);
  PortalResponses responses;
  std::optional<PortalNotificationCenter> center;

  void make(const QDBusConnection& connection) {
    center.reset();
    center.emplace(connection);
    center->setDelegate(&responses);
    center->setNotificationCategories(
        {{"polish", {{"VorliClearNow", "Polish Now", 4}}},
         {"broken",
          {{"VorliReinstallHelper", "Reinstall", 4}, {"VorliOpenLoginItems", "Open Settings", 4}}}});
  }
  Result post(const std::string& identifier, const std::string& category) {
    std::optional<Result> result;
    center->add({.identifier = identifier,
                 .title = "Vorli",
                 .body = "Full & <warm>.",
                 .categoryIdentifier = category},
                OnceReply<Result>([&](Result given) { result = std::move(given); }));
    loopUntil([&] { return result.has_value(); });
    return result.value_or(std::unexpected("no reply"));
  }
  ports::NotificationAuthorization ask() {
    std::optional<ports::NotificationAuthorization> answer;
    center->requestAuthorization(
        6, OnceReply<ports::NotificationAuthorization>([&](auto given) { answer = std::move(given); }));
    loopUntil([&] { return answer.has_value(); });
    return answer.value_or(ports::NotificationAuthorization{});
  }
};

TEST_F(PortalNotificationCenterTest, showsAPassiveNoticeWithItsButtons) {
  EXPECT_TRUE(post("one", "broken").has_value());
  EXPECT_EQ(portal->identifiers, std::vector<QString>{"one"});
  const auto& sent = portal->notices.at(0);
  EXPECT_EQ(sent["title"].toString(), "Vorli");
  EXPECT_EQ(sent["body"].toString(), "Full & <warm>.");
  EXPECT_EQ(sent["priority"].toString(), "low");
  EXPECT_EQ(sent["default-action"].toString(), "default");
  const auto buttons = qdbus_cast<QList<QVariantMap>>(sent["buttons"]);
  ASSERT_EQ(buttons.size(), 2);
  EXPECT_EQ(buttons[0]["label"].toString(), "Reinstall");
  EXPECT_EQ(buttons[0]["action"].toString(), "VorliReinstallHelper");
  EXPECT_EQ(buttons[1]["label"].toString(), "Open Settings");
  EXPECT_EQ(buttons[1]["action"].toString(), "VorliOpenLoginItems");
}

TEST_F(PortalNotificationCenterTest, answersOnceForTheNoticeThatWasPressed) {
  EXPECT_TRUE(post("one", "polish").has_value());
  EXPECT_TRUE(post("two", "broken").has_value());
  portal->press("another program's", "VorliClearNow");
  portal->press("two", "VorliReinstallHelper");
  portal->press("two", "VorliReinstallHelper");
  portal->press("one", "default");
  loopUntil([this] { return responses.all.size() >= 2; });
  EXPECT_EQ(responses.all, (Pairs{{"broken", "VorliReinstallHelper"},
                                  {"polish", std::string(ports::notificationDefaultActionIdentifier)}}));
}

TEST_F(PortalNotificationCenterTest, isGrantedWhenThePortalAnswers) {
  const auto answer = ask();
  EXPECT_TRUE(answer.granted);
  EXPECT_EQ(answer.error, std::nullopt);
}

TEST_F(PortalNotificationCenterTest, aPortalWithoutNoticesRefusesWithItsText) {
  portal->hasNotices = false;
  const auto answer = ask();
  EXPECT_FALSE(answer.granted);
  EXPECT_EQ(answer.error, "no notices here");
  EXPECT_EQ(post("one", "polish"), Result(std::unexpected("no notices here")));
  portal->press("one", "default");
  portal->hasNotices = true;
  EXPECT_TRUE(post("two", "polish").has_value());  // after the press
  EXPECT_EQ(responses.all, Pairs{});
}

TEST_F(PortalNotificationCenterTest, withoutAPortalOrABusNothingIsPosted) {
  portal.reset();
  EXPECT_FALSE(post("one", "polish").has_value());
  make(QDBusConnection("no such connection"));
  EXPECT_EQ(ask().error, "There is no session bus.");
  EXPECT_EQ(post("one", "polish").error(), "There is no session bus.");
}

TEST_F(PortalNotificationCenterTest, pendingRequestsEndWithIt) {
  center->add({}, OnceReply<Result>([](const Result&) { ADD_FAILURE(); }));
  center.reset();
  make(bus.connect());
  EXPECT_TRUE(ask().granted);  // everything that came in the meantime has been handled
}

}  // namespace
}  // namespace vorli::ui
