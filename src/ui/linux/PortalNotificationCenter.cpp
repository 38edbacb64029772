#include "ui/linux/PortalNotificationCenter.h"

#include "ui/linux/DBusCalls.h"

#include <QDBusMetaType>
#include <QList>
#include <QMetaObject>
#include <algorithm>
#include <utility>

namespace vorli::ui {

namespace {

using PortalButtons = QList<QVariantMap>;

const QString noticePortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString noticePortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString noticeInterface = QStringLiteral("org.freedesktop.portal.Notification");
const QString portalsPlainClick = QStringLiteral("default");

constexpr std::size_t mostAnswerable = 16;  // the portal does not report the end of a notice

QDBusMessage portalCall(const QString& interface, const char* method) {
  return QDBusMessage::createMethodCall(noticePortal, noticePortalPath, interface, QLatin1String(method));
}

}  // namespace

void PortalNotificationCenter::setNotificationCategories(
    std::vector<ports::NotificationCategory> categories) {
  categories_ = std::move(categories);
}

void PortalNotificationCenter::requestAuthorization(std::uint32_t,
                                                    OnceReply<ports::NotificationAuthorization> reply) {
  const auto shared = std::make_shared<OnceReply<ports::NotificationAuthorization>>(std::move(reply));
  if (!bus_.isConnected())
    return later([shared] { std::move (*shared)({.granted = false, .error = std::string(noSessionBus)}); });
  auto call = portalCall(QStringLiteral("org.freedesktop.DBus.Properties"), "Get");
  call << noticeInterface << QStringLiteral("version");
  callAsync(bus_, call, &context_, [shared](const QDBusMessage& answer) {
    if (isReply(answer)) return std::move(*shared)({.granted = true, .error = std::nullopt});
    std::move (*shared)({.granted = false, .error = answer.errorMessage().toStdString()});
  });
}

void PortalNotificationCenter::add(ports::NotificationRequest request,
                                   OnceReply<std::expected<void, std::string>> reply) {
  const auto shared = std::make_shared<OnceReply<std::expected<void, std::string>>>(std::move(reply));
  if (!bus_.isConnected())
    return later([shared] { std::move (*shared)(std::unexpected(std::string(noSessionBus))); });
  listen();
  auto call = portalCall(noticeInterface, "AddNotification");
  call << QString::fromStdString(request.identifier) << portalForm(request);
  callAsync(bus_, call, &context_,
            [this, posted = Posted{request.identifier, request.categoryIdentifier},
             shared](const QDBusMessage& answer) {
              if (!isReply(answer))
                return std::move(*shared)(std::unexpected(answer.errorMessage().toStdString()));
              if (posted_.size() == mostAnswerable) posted_.pop_front();
              posted_.push_back(posted);
              std::move (*shared)({});
            });
}

void PortalNotificationCenter::listen() {
  if (invoked_) return;
  invoked_ = std::make_unique<DBusSignalReceiver>(
      bus_, noticePortalPath, noticeInterface, QStringLiteral("ActionInvoked"),
      [this](const QDBusMessage& signal) { actionInvoked(signal); });
}

void PortalNotificationCenter::later(std::function<void()> work) {
  QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
}

QVariantMap PortalNotificationCenter::portalForm(const ports::NotificationRequest& request) const {
  using Level = ports::NotificationRequest::InterruptionLevel;
  qDBusRegisterMetaType<PortalButtons>();
  PortalButtons buttons;
  const auto found =
      std::ranges::find(categories_, request.categoryIdentifier, &ports::NotificationCategory::identifier);
  if (found != categories_.end()) {
    for (const auto& action : found->actions) {
      buttons << QVariantMap{{QStringLiteral("label"), QString::fromStdString(action.title)},
                             {QStringLiteral("action"), QString::fromStdString(action.identifier)}};
    }
  }
  return {{QStringLiteral("title"), QString::fromStdString(request.title)},
          {QStringLiteral("body"), QString::fromStdString(request.body)},
          {QStringLiteral("priority"),
           request.interruptionLevel == Level::passive ? QStringLiteral("low") : QStringLiteral("normal")},
          {QStringLiteral("default-action"), portalsPlainClick},
          {QStringLiteral("buttons"), QVariant::fromValue(buttons)}};
}

void PortalNotificationCenter::actionInvoked(const QDBusMessage& signal) {
  const auto identifier = signal.arguments().value(0).toString().toStdString();
  const auto found = std::ranges::find(posted_, identifier, &Posted::identifier);
  if (found == posted_.end()) return;  // another program's
  const auto action = signal.arguments().value(1).toString();
  ports::NotificationResponse response{
      .actionIdentifier = action == portalsPlainClick
                              ? std::string(ports::notificationDefaultActionIdentifier)
                              : action.toStdString(),
      .categoryIdentifier = std::move(found->categoryIdentifier)};
  posted_.erase(found);
  if (delegate_) delegate_->didReceive(std::move(response), [] {});
}

}  // namespace vorli::ui
