#pragma once

#include "ui/linux/DBusSignalReceiver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <expected>
#include <functional>
#include <memory>
#include <string>

namespace vorli::ui {

/// One query to PackageKit, which changes and downloads nothing. Deletes itself once it is answered.
class PackageTransaction final : public QObject {
  Q_OBJECT

 public:
  struct Failure {
    int code = 0;  // PackageKit's own code; 0 when PackageKit could not be asked
    std::string text;
  };
  /// Packages in PackageKit's notation: "name;version;architecture;origin".
  using Result = std::expected<QStringList, Failure>;
  using Done = std::function<void(const Result&)>;

  /// Calls the method `question` with its arguments. `done` runs on the main thread, never inside this call,
  /// and never after `owner` has been destroyed.
  static void ask(const QDBusConnection& bus, QObject* owner, const QString& question,
                  const QVariantList& arguments, Done done);

 private:
  PackageTransaction(const QDBusConnection& bus, QObject* owner, Done done);
  void create(const QString& question, const QVariantList& arguments);
  void run(const QString& path, const QString& question, const QVariantList& arguments);
  std::unique_ptr<DBusSignalReceiver> receiver(const QString& path, const char* signal,
                                               DBusSignalReceiver::Handler handler);
  void finish(const Result& result);

  QDBusConnection bus_;
  Done done_;
  QDBusServiceWatcher service_;
  QStringList packages_;
  Failure failure_{.code = 0, .text = "The package service gave no reason."};
  std::unique_ptr<DBusSignalReceiver> package_, error_, finished_;
};

}  // namespace vorli::ui
