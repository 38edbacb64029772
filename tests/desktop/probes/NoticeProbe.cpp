// Posts the two notices of the program and prints what is pressed on them.

#include "ports/UserNotificationCenter.h"
#include "ui/linux/UserNotificationCenter.h"
#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <cstdio>
#include <string>
#include <utility>

namespace {

void say(const std::string& text) {
  std::puts(text.c_str());
  std::fflush(stdout);
}

struct Delegate final : vorli::ports::NotificationDelegate {
  std::uint32_t presentationOptions() override { return 18; }
  void didReceive(vorli::ports::NotificationResponse response,
                  vorli::UniqueFunction<void()> completion) override {
    say("pressed " + response.categoryIdentifier + " " + response.actionIdentifier);
    completion();
  }
};

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  vorli::ui::QtScheduler scheduler;
  vorli::ui::UserNotificationCenter center(QDBusConnection::sessionBus(), scheduler);
  Delegate delegate;
  center.setDelegate(&delegate);
  center.setNotificationCategories({{"VorliClearAction", {{"VorliClearNow", "Polish Now", 4}}}});
  center.requestAuthorization(
      6, vorli::OnceReply<vorli::ports::NotificationAuthorization>(
             [](const auto& answer) { say(answer.granted ? "granted" : "not granted"); }));
  center.add({.identifier = "1",
              .title = "Vorli",
              .body = "Your computer is feeling full. A quick polish should help.",
              .categoryIdentifier = "VorliClearAction"},
             vorli::OnceReply<std::expected<void, std::string>>(
                 [](const auto& result) { say(result ? "posted" : "failed " + result.error()); }));
  return QCoreApplication::exec();
}
