#pragma once

#include "ui/linux/DBusSignalReceiver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vorli::ui {

/// One global shortcut of the desktop portal, which may ask the user and lets them choose another key. Main
/// thread; nothing blocks.
class ShortcutsPortal {
 public:
  /// `changed` gets the error code when the shortcut is refused or lost, and 0 when a portal that started
  /// again gives it back.
  ShortcutsPortal(QDBusConnection bus, std::function<void()> pressed,
                  std::function<void(std::int32_t)> changed);

  /// The key code and the mask are those of the port. A refusal is reported later: `hotkeyUnavailable` where
  /// no portal offers global shortcuts or the portal ends the session, else `hotkeyDeclined`. Unless it was
  /// declined, a portal that starts later is asked again.
  void bind(std::uint32_t keyCode, std::uint32_t modifiers);
  void release();

  /// A combination in the notation of the portal, such as "ALT+SHIFT+c".
  static QString triggerText(std::uint32_t keyCode, std::uint32_t modifiers);

 private:
  using Answer = std::function<void(const QVariantMap&)>;

  /// State of one session. Destroying it cancels everything that is in progress for it.
  struct Binding {
    QObject context;
    bool isAgain = false;     // follows a refusal or a loss
    bool isCreating = false;  // the portal has not yet sent the session's name
    QString session;
    std::unique_ptr<DBusSignalReceiver> response;
    std::unique_ptr<DBusSignalReceiver> activated, closed;
  };

  void watchPortal();
  void ownerChanged(const QString& before, const QString& now);
  void endSession();
  void close(const QString& session);
  void discard(Binding& binding, const QVariantMap& results);
  QString awaitResponse(Answer answer);
  void request(const QDBusMessage& call);
  void createSession();
  void bindShortcut();
  void activated(const QDBusMessage& signal);
  void refuse(std::int32_t status);

  QDBusConnection bus_;
  std::function<void()> pressed_;
  std::function<void(std::int32_t)> changed_;
  unsigned tokens_ = 0;
  QString trigger_;
  std::unique_ptr<QDBusServiceWatcher> owners_;  // while the key is wanted from a portal
  std::unique_ptr<Binding> binding_;
  std::vector<std::unique_ptr<Binding>> unwanted_;  // released before the portal has created their sessions
};

}  // namespace vorli::ui
