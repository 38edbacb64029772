#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

namespace vorli::ui {

/// Runs the main loop until the condition holds; fails an expectation if it never does.
inline bool loopUntil(const std::function<bool()>& condition, int deadlineMilliseconds = 20'000) {
  QElapsedTimer clock;
  clock.start();
  QTimer tick;  // wakes the loop, so that the condition is checked even if nothing happens
  tick.start(1);
  while (!condition()) {
    if (clock.elapsed() > deadlineMilliseconds) {
      ADD_FAILURE() << "waited in vain for " << deadlineMilliseconds << " ms";
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

/// A private bus that starts no program. It ends with the test, even if the test dies.
class PrivateSessionBus {
 public:
  PrivateSessionBus() {
    QFile configuration(folder_.filePath("bus.conf"));
    EXPECT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write(("<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
                         "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\"><busconfig>"
                         "<listen>unix:path=" +
                         folder_.filePath("socket") +
                         "</listen><auth>EXTERNAL</auth><policy context='default'>"
                         "<allow send_destination='*'/><allow eavesdrop='false'/><allow own='*'/>"
                         "<allow send_type='signal'/></policy></busconfig>")
                            .toUtf8());
    configuration.close();
    daemon_.start("setpriv", {"--pdeathsig", "KILL", "dbus-daemon", "--nofork", "--print-address=1",
                              "--config-file=" + folder_.filePath("bus.conf")});
    EXPECT_TRUE(daemon_.waitForReadyRead());
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
  }
  ~PrivateSessionBus() {
    for (const auto& name : names_) QDBusConnection::disconnectFromBus(name);
    daemon_.kill();
    daemon_.waitForFinished();
  }
  PrivateSessionBus(const PrivateSessionBus&) = delete;
  PrivateSessionBus& operator=(const PrivateSessionBus&) = delete;

  /// Makes another connection, like one of another program.
  QDBusConnection connect() {
    static int count = 0;
    names_ << QStringLiteral("private-bus-%1").arg(++count);
    return QDBusConnection::connectToBus(address_, names_.back());
  }
  /// Closes a connection, as at the end of its program.
  void disconnect(const QDBusConnection& connection) {
    names_.removeAll(connection.name());
    QDBusConnection::disconnectFromBus(connection.name());
  }

 private:
  QTemporaryDir folder_;
  QProcess daemon_;
  QString address_;
  QStringList names_;
};

}  // namespace vorli::ui
