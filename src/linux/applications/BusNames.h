#pragma once

#include "linux/applications/QuitAction.h"

#include <QDBusConnection>
#include <QObject>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// Reports the processes that own an application's name on the session bus. Never blocks; reports nothing
/// without a bus. Main thread.
class BusNames final : public QObject {
  Q_OBJECT

 public:
  struct Handlers {
    /// True when this is the identifier of an application; other names are ignored.
    std::function<bool(std::string_view applicationID)> isApplication;
    std::function<void(std::int32_t pid, const std::string& applicationID)> ownerSeen;
    /// Called after `ownerSeen` if the application has a quit action.
    std::function<void(std::int32_t pid, const QuitAction& action)> quitActionSeen;
  };

  explicit BusNames(Handlers handlers);

  /// Identifier of the application that owns a bus name. Programs that run several times append their process
  /// identifier: "org.example.Editor-1234".
  static std::string applicationIDOf(std::string_view busName);
  /// Object at which a GTK application with this bus name exports its actions.
  static std::string objectPathOf(std::string_view busName);

 private slots:
  void ownerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);

 private:
  void askForNames();
  void askForOwner(const QString& name);
  void askForActions(std::int32_t pid, const QString& name);

  QDBusConnection bus_;
  const Handlers handlers_;
};

}  // namespace vorli::linuxhost
