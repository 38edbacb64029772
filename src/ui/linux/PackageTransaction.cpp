#include "ui/linux/PackageTransaction.h"

#include "ui/linux/DBusCalls.h"

#include <QDBusObjectPath>
#include <QMetaObject>
#include <utility>

namespace vorli::ui {

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.PackageKit");
const QString servicePath = QStringLiteral("/org/freedesktop/PackageKit");
const QString transactionInterface = QStringLiteral("org.freedesktop.PackageKit.Transaction");

constexpr unsigned exitSuccess = 1;

}  // namespace

void PackageTransaction::ask(const QDBusConnection& bus, QObject* owner, const QString& question,
                             const QVariantList& arguments, Done done) {
  // A child of its owner, so it is destroyed with the owner at the latest.
  auto* const transaction = new PackageTransaction(bus, owner, std::move(done));
  transaction->create(question, arguments);
}

PackageTransaction::PackageTransaction(const QDBusConnection& bus, QObject* owner, Done done)
    : QObject(owner),
      bus_(bus),
      done_(std::move(done)),
      service_(serviceName, bus_, QDBusServiceWatcher::WatchForUnregistration) {
  connect(&service_, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
    finish(std::unexpected(Failure{0, "The package service has ended."}));
  });
}

void PackageTransaction::create(const QString& question, const QVariantList& arguments) {
  if (!bus_.isConnected()) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          finish(std::unexpected(Failure{0, "There is no system bus."}));
        },
        Qt::QueuedConnection);
    return;
  }
  const auto call = QDBusMessage::createMethodCall(serviceName, servicePath, serviceName,
                                                   QStringLiteral("CreateTransaction"));
  callAsync(bus_, call, this, [this, question, arguments](const QDBusMessage& answer) {
    if (!isReply(answer)) return finish(std::unexpected(Failure{0, answer.errorMessage().toStdString()}));
    run(answer.arguments().value(0).value<QDBusObjectPath>().path(), question, arguments);
  });
}

// Listens for the signals before it asks the question: the last signal may come with the reply.
void PackageTransaction::run(const QString& path, const QString& question, const QVariantList& arguments) {
  package_ = receiver(path, "Package", [this](const QDBusMessage& signal) {
    packages_ << signal.arguments().value(1).toString();
  });
  error_ = receiver(path, "ErrorCode", [this](const QDBusMessage& signal) {
    failure_ = {signal.arguments().value(0).toInt(), signal.arguments().value(1).toString().toStdString()};
  });
  finished_ = receiver(path, "Finished", [this](const QDBusMessage& signal) {
    const bool isSuccess = signal.arguments().value(0).toUInt() == exitSuccess;
    finish(isSuccess ? Result(packages_) : std::unexpected(failure_));
  });
  auto call = QDBusMessage::createMethodCall(serviceName, path, transactionInterface, question);
  call.setArguments(arguments);
  callAsync(bus_, call, this, [this](const QDBusMessage& answer) {
    if (!isReply(answer)) finish(std::unexpected(Failure{0, answer.errorMessage().toStdString()}));
  });
}

std::unique_ptr<DBusSignalReceiver> PackageTransaction::receiver(const QString& path, const char* signal,
                                                                 DBusSignalReceiver::Handler handler) {
  return std::make_unique<DBusSignalReceiver>(bus_, path, transactionInterface, QLatin1String(signal),
                                              std::move(handler));
}

void PackageTransaction::finish(const Result& result) {
  const auto done = std::exchange(done_, nullptr);
  if (!done) return;
  deleteLater();
  done(result);
}

}  // namespace vorli::ui
