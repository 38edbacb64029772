#include "ui/linux/ShortcutsPortal.h"

#include "ports/GlobalHotkeys.h"
#include "ui/linux/DBusCalls.h"
#include "ui/linux/PortalShortcut.h"
#include "ui/linux/X11Keyboard.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QMetaObject>
#include <QPointer>
#include <QVariantMap>
#include <algorithm>
#include <utility>

namespace vorli::ui {

namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString desktopPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString shortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");
const QString shortcutID = QStringLiteral("polish");
const QString sessionHandle = QStringLiteral("session_handle");

QDBusMessage shortcutsCall(const char* method) {
  return QDBusMessage::createMethodCall(portal, desktopPath, shortcuts, QLatin1String(method));
}

// False when the user left the key out of the portal's window. Some portals do not report what they bound.
bool isBound(const QVariantMap& results) {
  const auto reported = results.constFind(QStringLiteral("shortcuts"));
  if (reported == results.constEnd()) return true;
  return std::ranges::any_of(qdbus_cast<PortalShortcuts>(*reported),
                             [](const PortalShortcut& shortcut) { return shortcut.id == shortcutID; });
}

}  // namespace

ShortcutsPortal::ShortcutsPortal(QDBusConnection bus, std::function<void()> pressed,
                                 std::function<void(std::int32_t)> changed)
    : bus_(std::move(bus)), pressed_(std::move(pressed)), changed_(std::move(changed)) {
  registerPortalShortcut();
}

void ShortcutsPortal::bind(std::uint32_t keyCode, std::uint32_t modifiers) {
  release();
  trigger_ = triggerText(keyCode, modifiers);
  binding_ = std::make_unique<Binding>();
  if (!bus_.isConnected()) return refuse(ports::hotkeyUnavailable);
  watchPortal();
  createSession();
}

void ShortcutsPortal::release() {
  owners_.reset();
  endSession();
}

// Queued on the application, because the handler may destroy the watcher.
void ShortcutsPortal::watchPortal() {
  owners_ = std::make_unique<QDBusServiceWatcher>(portal, bus_, QDBusServiceWatcher::WatchForOwnerChange);
  QObject::connect(
      owners_.get(), &QDBusServiceWatcher::serviceOwnerChanged, QCoreApplication::instance(),
      [this, owners = QPointer(owners_.get())](const QString&, const QString& before, const QString& now) {
        if (owners) ownerChanged(before, now);
      },
      Qt::QueuedConnection);
}

// A portal that ended took its sessions along. None is closed here: the bus would start the portal for it.
void ShortcutsPortal::ownerChanged(const QString& before, const QString& now) {
  if (!before.isEmpty()) unwanted_.clear();
  if (!before.isEmpty() && binding_) {
    binding_.reset();
    changed_(ports::hotkeyUnavailable);
  }
  if (now.isEmpty() || binding_ || !owners_) return;
  binding_ = std::make_unique<Binding>();
  binding_->isAgain = true;
  createSession();
}

void ShortcutsPortal::endSession() {
  if (!binding_) return;
  if (binding_->isCreating) {
    unwanted_.push_back(std::move(binding_));
  } else {
    close(binding_->session);
  }
  binding_.reset();
}

void ShortcutsPortal::close(const QString& session) {
  if (session.isEmpty()) return;
  bus_.send(QDBusMessage::createMethodCall(portal, session, sessionInterface, QStringLiteral("Close")));
}

// Queued on the application, because it destroys the binding, in whose context this is called.
void ShortcutsPortal::discard(Binding& binding, const QVariantMap& results) {
  close(results.value(sessionHandle).toString());
  QMetaObject::invokeMethod(
      QCoreApplication::instance(),
      [this, context = QPointer(&binding.context)] {
        if (context)
          std::erase_if(unwanted_, [&](const auto& each) { return &each->context == context.data(); });
      },
      Qt::QueuedConnection);
}

void ShortcutsPortal::createSession() {
  binding_->isCreating = true;
  const QString token = awaitResponse([this](const QVariantMap& results) {
    binding_->session = results.value(sessionHandle).toString();
    bindShortcut();
  });
  auto call = shortcutsCall("CreateSession");
  call << QVariantMap{{QStringLiteral("handle_token"), token},
                      {QStringLiteral("session_handle_token"), token}};
  request(call);
}

void ShortcutsPortal::bindShortcut() {
  binding_->activated =
      std::make_unique<DBusSignalReceiver>(bus_, desktopPath, shortcuts, QStringLiteral("Activated"),
                                           [this](const QDBusMessage& signal) { activated(signal); });
  binding_->closed = std::make_unique<DBusSignalReceiver>(
      bus_, binding_->session, sessionInterface, QStringLiteral("Closed"),
      [this](const QDBusMessage&) { refuse(ports::hotkeyUnavailable); });
  const QString token = awaitResponse([this](const QVariantMap& results) {
    if (!isBound(results)) return refuse(ports::hotkeyDeclined);
    if (binding_->isAgain) changed_(0);
  });
  auto call = shortcutsCall("BindShortcuts");
  call << QVariant::fromValue(QDBusObjectPath(binding_->session))
       << QVariant::fromValue(PortalShortcuts{{shortcutID,
                                               {{QStringLiteral("description"), QStringLiteral("Polish Now")},
                                                {QStringLiteral("preferred_trigger"), trigger_}}}})
       << QString() << QVariantMap{{QStringLiteral("handle_token"), token}};
  request(call);
}

// Waits for the portal's answer: a signal on a path that is known beforehand, so that it cannot be missed.
// Returns the token that names the path.
QString ShortcutsPortal::awaitResponse(Answer answer) {
  const QString token = QStringLiteral("vorli%1").arg(++tokens_);
  QString sender = bus_.baseService().mid(1);
  sender.replace(QLatin1Char('.'), QLatin1Char('_'));
  auto next = std::make_unique<DBusSignalReceiver>(
      bus_, desktopPath + QStringLiteral("/request/%1/%2").arg(sender, token),
      QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
      [this, binding = binding_.get(), answer = std::move(answer)](const QDBusMessage& signal) {
        const auto response = signal.arguments().value(0).toUInt();
        const auto results = qdbus_cast<QVariantMap>(signal.arguments().value(1));
        // Queued, because the next step may destroy the receiver that this runs in.
        QMetaObject::invokeMethod(
            &binding->context,
            [this, binding, answer, response, results] {
              if (binding != binding_.get()) return discard(*binding, results);
              binding->isCreating = false;
              if (response != 0) return refuse(ports::hotkeyDeclined);
              answer(results);
            },
            Qt::QueuedConnection);
      });
  binding_->response = std::move(next);
  return token;
}

void ShortcutsPortal::request(const QDBusMessage& call) {
  callAsync(bus_, call, &binding_->context, [this, binding = binding_.get()](const QDBusMessage& reply) {
    if (isReply(reply)) return;
    if (binding != binding_.get()) return discard(*binding, {});
    binding->isCreating = false;
    refuse(ports::hotkeyUnavailable);
  });
}

void ShortcutsPortal::activated(const QDBusMessage& signal) {
  const auto session = signal.arguments().value(0).value<QDBusObjectPath>().path();
  if (session == binding_->session && signal.arguments().value(1).toString() == shortcutID) pressed_();
}

// Queued on the application, because it destroys the binding, in whose context this is called.
void ShortcutsPortal::refuse(std::int32_t status) {
  QMetaObject::invokeMethod(
      QCoreApplication::instance(),
      [this, binding = QPointer(&binding_->context), status] {
        if (!binding) return;  // destroyed, or bound to another key
        endSession();
        if (status == ports::hotkeyDeclined) owners_.reset();
        changed_(status);
      },
      Qt::QueuedConnection);
}

QString ShortcutsPortal::triggerText(std::uint32_t keyCode, std::uint32_t modifiers) {
  QString text;
  if (modifiers & 0x1000) text += QLatin1String("CTRL+");
  if (modifiers & 0x800) text += QLatin1String("ALT+");
  if (modifiers & 0x200) text += QLatin1String("SHIFT+");
  if (modifiers & 0x100) text += QLatin1String("LOGO+");
  switch (keyCode) {
    case 49:
      return text + QLatin1String("space");
    case 36:
      return text + QLatin1String("Return");
    case 48:
      return text + QLatin1String("Tab");
    default:
      return text + QLatin1Char(X11Keyboard::characterFor(keyCode).value_or(' '));
  }
}

}  // namespace vorli::ui
