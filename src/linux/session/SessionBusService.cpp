#include "linux/session/SessionBusService.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <utility>

namespace vorli::linuxhost {

namespace {

const QString applicationName = QStringLiteral("com.kv.vorli");
const QString applicationPath = QStringLiteral("/com/kv/vorli");
const QString applicationInterface = QStringLiteral("org.freedesktop.Application");
const QString statusInterface = QStringLiteral("com.kv.vorli.Status");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr int activationTimeoutMilliseconds = 3000;

}  // namespace

class SessionBusService::Object final : public QDBusVirtualObject {
 public:
  std::function<void()> activate;
  std::function<Status()> status;
  // The bus sets this variable for programs that it starts, and they pass it on to their own children.
  bool awaitsMessageOfStart = qEnvironmentVariableIsSet("DBUS_STARTER_ADDRESS");

  QString introspect(const QString&) const override {
    return QStringLiteral(
        "<interface name='org.freedesktop.Application'>"
        "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
        "<method name='Open'><arg type='as' direction='in'/><arg type='a{sv}' direction='in'/></method>"
        "<method name='ActivateAction'><arg type='s' direction='in'/><arg type='av' direction='in'/>"
        "<arg type='a{sv}' direction='in'/></method></interface>"
        "<interface name='com.kv.vorli.Status'>"
        "<property name='RingProgress' type='d' access='read'/>"
        "<property name='Ticks' type='t' access='read'/>"
        "<property name='HelperStatus' type='s' access='read'/></interface>");
  }

  // The bus delivers the message for which it started the program before any other.
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    const bool isOfStart = std::exchange(awaitsMessageOfStart, false);
    if (message.interface() == applicationInterface) return handleApplication(message, bus, isOfStart);
    if (message.interface() == propertiesInterface) return handleProperties(message, bus);
    return false;
  }

 private:
  bool handleApplication(const QDBusMessage& message, const QDBusConnection& bus, bool isOfStart) {
    if (message.member() != QLatin1String("Activate") && message.member() != QLatin1String("Open") &&
        message.member() != QLatin1String("ActivateAction")) {
      return false;
    }
    bus.send(message.createReply());
    if (activate && !isOfStart) activate();
    return true;
  }

  QVariantMap properties() const {
    const Status now = status ? status() : Status{};
    return {{QStringLiteral("RingProgress"), now.ringProgress},
            {QStringLiteral("Ticks"), QVariant::fromValue<qulonglong>(now.ticks)},
            {QStringLiteral("HelperStatus"), QString::fromStdString(now.helperStatus)}};
  }

  bool handleProperties(const QDBusMessage& message, const QDBusConnection& bus) {
    const auto arguments = message.arguments();
    const bool isStatus = arguments.value(0).toString() == statusInterface;
    if (message.member() == QLatin1String("GetAll")) {
      bus.send(message.createReply(isStatus ? properties() : QVariantMap()));
      return true;
    }
    if (message.member() != QLatin1String("Get")) return false;
    const auto all = isStatus ? properties() : QVariantMap();
    const auto found = all.find(arguments.value(1).toString());
    if (found == all.end()) {
      bus.send(message.createErrorReply(QDBusError::UnknownProperty, arguments.value(1).toString()));
    } else {
      bus.send(message.createReply(QVariant::fromValue(QDBusVariant(*found))));
    }
    return true;
  }
};

SessionBusService::SessionBusService()
    : bus_(QDBusConnection::sessionBus()), object_(std::make_unique<Object>()) {}

SessionBusService::~SessionBusService() {
  if (bus_.isConnected()) bus_.unregisterObject(applicationPath);
}

void SessionBusService::setActivationHandler(std::function<void()> handler) {
  object_->activate = std::move(handler);
}
void SessionBusService::startIsOver() {
  object_->awaitsMessageOfStart = false;
}
void SessionBusService::setStatusProvider(std::function<Status()> provider) {
  object_->status = std::move(provider);
}

SessionBusService::Claim SessionBusService::claim() {
  if (!bus_.isConnected()) return Claim::noBus;
  // Registers the object first: a caller that was waiting for the name must find it.
  bus_.registerVirtualObject(applicationPath, object_.get(), QDBusConnection::SingleNode);
  const auto reply =
      bus_.interface()->registerService(applicationName, QDBusConnectionInterface::DontQueueService,
                                        QDBusConnectionInterface::DontAllowReplacement);
  if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) return Claim::owned;
  if (!reply.isValid()) return Claim::noBus;

  auto activate = QDBusMessage::createMethodCall(applicationName, applicationPath, applicationInterface,
                                                 QStringLiteral("Activate"));
  activate << QVariantMap();
  const auto answer = bus_.call(activate, QDBus::Block, activationTimeoutMilliseconds);
  return answer.type() == QDBusMessage::ReplyMessage ? Claim::alreadyRunning : Claim::noAnswer;
}

}  // namespace vorli::linuxhost
