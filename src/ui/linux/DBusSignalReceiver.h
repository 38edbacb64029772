#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace vorli::ui {

/// Passes a signal of the bus to a function while the receiver exists. Accepts any sender: for a named one,
/// Qt would ask the bus for its owner and wait.
class DBusSignalReceiver final : public QObject {
  Q_OBJECT

 public:
  using Handler = std::function<void(const QDBusMessage&)>;

  DBusSignalReceiver(QDBusConnection bus, const QString& path, const QString& interface, const QString& name,
                     Handler handler);
  ~DBusSignalReceiver() override;

 private slots:
  void received(const QDBusMessage& message) { handler_(message); }

 private:
  QDBusConnection bus_;
  const QString path_, interface_, name_;
  Handler handler_;
};

}  // namespace vorli::ui
