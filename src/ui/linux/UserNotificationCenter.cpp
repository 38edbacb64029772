#include "ui/linux/UserNotificationCenter.h"

#include "linux/BusDriverCall.h"
#include "ui/linux/DBusCalls.h"

#include <QMetaObject>
#include <QPointer>
#include <QVariantMap>
#include <algorithm>
#include <utility>

namespace vorli::ui {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString programIdentifier = QStringLiteral("com.kv.vorli");
const QString plainClick = QStringLiteral("default");

constexpr double serverStartSeconds = 10.0;
constexpr std::size_t mostShown = 16;  // some desktops never report the end of a listed notice

QDBusMessage notificationsCall(const char* method) {
  return QDBusMessage::createMethodCall(service, path, service, QLatin1String(method));
}

QVariantMap hintsOf(const ports::NotificationRequest& request) {
  return {
      {QStringLiteral("urgency"), QVariant::fromValue<uchar>(static_cast<uchar>(request.interruptionLevel))},
      {QStringLiteral("category"), QStringLiteral("device")},
      {QStringLiteral("desktop-entry"), programIdentifier},  // used by "do not disturb"
      {QStringLiteral("suppress-sound"), true}};
}

}  // namespace

UserNotificationCenter::UserNotificationCenter(QDBusConnection bus, Scheduler& scheduler)
    : bus_(std::move(bus)), scheduler_(scheduler) {}

UserNotificationCenter::~UserNotificationCenter() = default;

void UserNotificationCenter::setNotificationCategories(std::vector<ports::NotificationCategory> categories) {
  categories_ = std::move(categories);
}

void UserNotificationCenter::requestAuthorization(std::uint32_t,
                                                  OnceReply<ports::NotificationAuthorization> reply) {
  const auto shared = std::make_shared<OnceReply<ports::NotificationAuthorization>>(std::move(reply));
  if (!bus_.isConnected()) {
    return later([shared] { std::move (*shared)({.granted = false, .error = std::string(noSessionBus)}); });
  }
  askServer(shared, [this, shared](const QString&) { awaitServer(shared); });
}

void UserNotificationCenter::askServer(const AuthorizationReply& reply,
                                       std::function<void(const QString&)> failed) {
  callAsync(bus_, notificationsCall("GetServerInformation"), &context_,
            [reply, failed = std::move(failed)](const QDBusMessage& answer) {
              if (!isReply(answer)) return failed(answer.errorMessage());
              std::move (*reply)({.granted = true, .error = std::nullopt});
            });
}

// Waits for a server to start: at login, the program often runs before it.
void UserNotificationCenter::awaitServer(const AuthorizationReply& reply) {
  auto* const owners =
      new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForRegistration, &context_);
  QObject::connect(owners, &QDBusServiceWatcher::serviceRegistered, owners, [owners, reply] {
    owners->deleteLater();
    std::move (*reply)({.granted = true, .error = std::nullopt});
  });
  scheduler_.after(serverStartSeconds, [this, owners = QPointer(owners), reply] {
    if (!owners) return;  // answered, or the centre was destroyed
    delete owners;
    // Asks again: the server may have had its name before it could answer.
    askServer(reply, [reply](const QString& error) {
      std::move (*reply)({.granted = false, .error = error.toStdString()});
    });
  });
}

void UserNotificationCenter::add(ports::NotificationRequest request,
                                 OnceReply<std::expected<void, std::string>> reply) {
  const auto shared = std::make_shared<OnceReply<std::expected<void, std::string>>>(std::move(reply));
  if (!bus_.isConnected())
    return later([shared] { std::move (*shared)(std::unexpected(std::string(noSessionBus))); });
  ++posting_;
  listen();
  // Queried for each notice: another server may have taken over since the last one.
  callAsync(bus_, notificationsCall("GetCapabilities"), &context_,
            [this, request = std::move(request), shared](const QDBusMessage& answer) {
              if (!isReply(answer)) return posted(answer, {}, request.categoryIdentifier, shared);
              askForServer(request, answer.arguments().value(0).toStringList(), shared);
            });
}

// Asks the bus, because Qt does not say which address a reply came from. A signal names its sender's.
void UserNotificationCenter::askForServer(const ports::NotificationRequest& request,
                                          const QStringList& capabilities, const PostReply& reply) {
  auto question = linuxhost::busDriverCall("GetNameOwner");
  question << service;
  callAsync(bus_, question, &context_, [this, request, capabilities, reply](const QDBusMessage& answer) {
    if (!isReply(answer)) return posted(answer, {}, request.categoryIdentifier, reply);
    post(request, capabilities, answer.arguments().value(0).toString(), reply);
  });
}

void UserNotificationCenter::post(const ports::NotificationRequest& request, const QStringList& capabilities,
                                  const QString& server, const PostReply& reply) {
  QString body = QString::fromStdString(request.body);
  if (capabilities.contains(QLatin1String("body-markup"))) body = body.toHtmlEscaped();
  constexpr unsigned asANewOne = 0;
  constexpr int asLongAsTheServerLikes = -1;
  auto notify = QDBusMessage::createMethodCall(server, path, service, QStringLiteral("Notify"));
  notify << QStringLiteral("Vorli") << asANewOne << programIdentifier << QString::fromStdString(request.title)
         << body << actionsOf(request.categoryIdentifier, capabilities) << hintsOf(request)
         << asLongAsTheServerLikes;
  callAsync(bus_, notify, &context_,
            [this, server, category = request.categoryIdentifier, reply](const QDBusMessage& answer) {
              posted(answer, server, category, reply);
            });
}

// Returns pairs of a key and a label. The plain click comes last and without a label, because some servers
// show a button for an action with a label.
QStringList UserNotificationCenter::actionsOf(const std::string& category,
                                              const QStringList& capabilities) const {
  QStringList actions;
  const auto found = std::ranges::find(categories_, category, &ports::NotificationCategory::identifier);
  if (found != categories_.end() && capabilities.contains(QLatin1String("actions"))) {
    for (const auto& action : found->actions)
      actions << QString::fromStdString(action.identifier) << QString::fromStdString(action.title);
  }
  return actions << plainClick << QString();
}

void UserNotificationCenter::posted(const QDBusMessage& answer, const QString& server,
                                    const std::string& category, const PostReply& reply) {
  --posting_;
  if (isReply(answer)) {
    if (shown_.size() == mostShown) shown_.pop_front();
    shown_.push_back({server, answer.arguments().value(0).toUInt(), category});
    std::move (*reply)({});
  } else {
    std::move (*reply)(std::unexpected(answer.errorMessage().toStdString()));
  }
  stopListeningWhenIdle();
}

void UserNotificationCenter::listen() {
  if (listener_) return;
  const auto receiver = [this](const char* signal, auto handler) {
    return DBusSignalReceiver(bus_, path, service, QLatin1String(signal), std::move(handler));
  };
  listener_.reset(
      new Listener{receiver("ActionInvoked", [this](const QDBusMessage& signal) { actionInvoked(signal); }),
                   receiver("NotificationClosed", [this](const QDBusMessage& signal) { closed(signal); }),
                   QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForOwnerChange)});
  QObject::connect(&listener_->owners, &QDBusServiceWatcher::serviceOwnerChanged, &context_,
                   [this](const QString&, const QString& before, const QString&) { serverGone(before); });
}

// Stops listening, because every notice of every program wakes a listener. Deferred, because this may run
// inside one.
void UserNotificationCenter::stopListeningWhenIdle() {
  later([this] {
    if (shown_.empty() && posting_ == 0) listener_.reset();
  });
}

void UserNotificationCenter::later(std::function<void()> work) {
  QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
}

std::deque<UserNotificationCenter::Shown>::iterator UserNotificationCenter::find(const QDBusMessage& signal) {
  const auto id = signal.arguments().value(0).toUInt();
  return std::ranges::find_if(
      shown_, [&](const Shown& notice) { return notice.id == id && notice.server == signal.service(); });
}

void UserNotificationCenter::actionInvoked(const QDBusMessage& signal) {
  const auto found = find(signal);
  if (found == shown_.end()) return;  // another program's
  const auto key = signal.arguments().value(1).toString();
  ports::NotificationResponse response{
      .actionIdentifier =
          key == plainClick ? std::string(ports::notificationDefaultActionIdentifier) : key.toStdString(),
      .categoryIdentifier = std::move(found->categoryIdentifier)};
  shown_.erase(found);
  stopListeningWhenIdle();
  if (delegate_) delegate_->didReceive(std::move(response), [] {});
}

void UserNotificationCenter::closed(const QDBusMessage& signal) {
  if (const auto found = find(signal); found != shown_.end()) shown_.erase(found);
  stopListeningWhenIdle();
}

// Forgets the server's notices, which disappear with it.
void UserNotificationCenter::serverGone(const QString& server) {
  std::erase_if(shown_, [&](const Shown& notice) { return notice.server == server; });
  stopListeningWhenIdle();
}

}  // namespace vorli::ui
