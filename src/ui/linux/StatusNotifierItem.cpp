#include "ui/linux/StatusNotifierItem.h"

#include "linux/BusDriverCall.h"
#include "ui/linux/DBusMenu.h"
#include "ui/linux/DBusPropertyCalls.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusObjectPath>

namespace vorli::ui {
namespace {

constexpr char itemIntrospection[] = R"xml(<interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="WindowId" type="i" access="read"/>
  <property name="IconThemePath" type="s" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="IconPixmap" type="a(iiay)" access="read"/>
  <property name="IconAccessibleDesc" type="s" access="read"/>
  <property name="OverlayIconName" type="s" access="read"/>
  <property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionIconName" type="s" access="read"/>
  <property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionMovieName" type="s" access="read"/>
  <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
  <property name="Menu" type="o" access="read"/>
  <method name="Activate">
    <arg type="i" name="x" direction="in"/><arg type="i" name="y" direction="in"/>
  </method>
  <method name="SecondaryActivate">
    <arg type="i" name="x" direction="in"/><arg type="i" name="y" direction="in"/>
  </method>
  <method name="ContextMenu">
    <arg type="i" name="x" direction="in"/><arg type="i" name="y" direction="in"/>
  </method>
  <method name="Scroll">
    <arg type="i" name="delta" direction="in"/><arg type="s" name="orientation" direction="in"/>
  </method>
  <signal name="NewTitle"/><signal name="NewIcon"/><signal name="NewToolTip"/>
  <signal name="NewStatus"><arg type="s" name="status"/></signal>
</interface>)xml";

const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, GestureHandler handler)
    : bus_(std::move(bus)), gestureHandler_(std::move(handler)) {
  registerStatusNotifierTypes();
  bus_.registerVirtualObject(QLatin1String(path), this, QDBusConnection::SingleNode);
  // Does not use registerService(), which waits for the bus. The bus handles this request before any later
  // one.
  auto request = linuxhost::busDriverCall("RequestName");
  constexpr uint doNotQueue = 4;
  request << serviceName() << doNotQueue;
  bus_.send(request);
}

StatusNotifierItem::~StatusNotifierItem() {
  bus_.unregisterObject(QLatin1String(path));
}

QString StatusNotifierItem::serviceName() const {
  return QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
}

void StatusNotifierItem::setIcon(const IconPixmaps& pixmaps) {
  icon_ = pixmaps;
  send(QStringLiteral("NewIcon"));
}

void StatusNotifierItem::setToolTip(const QString& title, const QString& text) {
  if (toolTip_.title == title && toolTip_.text == text) return;
  toolTip_ = {{}, {}, title, text};
  send(QStringLiteral("NewToolTip"));
}

void StatusNotifierItem::setAccessibleDescription(const QString& text) {
  if (accessibleDescription_ == text) return;
  accessibleDescription_ = text;
  auto signal = QDBusMessage::createSignal(QLatin1String(path), propertiesInterface,
                                           QStringLiteral("PropertiesChanged"));
  signal << itemInterface << QVariantMap{{QStringLiteral("IconAccessibleDesc"), text}} << QStringList{};
  bus_.send(signal);
}

QString StatusNotifierItem::introspect(const QString&) const {
  return QLatin1String(itemIntrospection);
}

bool StatusNotifierItem::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
  if (answerPropertyCall(message, bus, itemInterface, [this] { return properties(); })) return true;
  if (message.interface() != itemInterface && !message.interface().isEmpty()) return false;
  return handleGesture(message);
}

QVariantMap StatusNotifierItem::properties() const {
  const auto noPixmaps = QVariant::fromValue(IconPixmaps{});
  const QString none = QStringLiteral("");  // a null string has no type on the bus
  return {{QStringLiteral("Category"), QStringLiteral("SystemServices")},
          {QStringLiteral("Id"), QStringLiteral("com.kv.vorli")},
          {QStringLiteral("Title"), QStringLiteral("Vorli")},
          {QStringLiteral("Status"), QStringLiteral("Active")},
          {QStringLiteral("WindowId"), 0},
          {QStringLiteral("IconThemePath"), none},
          {QStringLiteral("IconName"), none},
          {QStringLiteral("IconPixmap"), QVariant::fromValue(icon_)},
          {QStringLiteral("IconAccessibleDesc"), none + accessibleDescription_},
          {QStringLiteral("OverlayIconName"), none},
          {QStringLiteral("OverlayIconPixmap"), noPixmaps},
          {QStringLiteral("AttentionIconName"), none},
          {QStringLiteral("AttentionIconPixmap"), noPixmaps},
          {QStringLiteral("AttentionMovieName"), none},
          {QStringLiteral("ToolTip"), QVariant::fromValue(toolTip_)},
          {QStringLiteral("ItemIsMenu"), false},
          {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(QLatin1String(DBusMenu::path)))}};
}

bool StatusNotifierItem::handleGesture(const QDBusMessage& message) {
  const auto member = message.member();
  if (member == QLatin1String("Scroll") || member == QLatin1String("ProvideXdgActivationToken")) {
    answer(message, bus_);
    return true;
  }
  Gesture gesture;
  if (member == QLatin1String("Activate")) {
    gesture = Gesture::activate;
  } else if (member == QLatin1String("SecondaryActivate")) {
    gesture = Gesture::secondaryActivate;
  } else if (member == QLatin1String("ContextMenu")) {
    gesture = Gesture::contextMenu;
  } else {
    return false;
  }
  if (message.signature() != QLatin1String("ii")) {
    refuse(message, bus_, QDBusError::InvalidArgs, message.signature());
    return true;
  }
  answer(message, bus_);
  const auto arguments = message.arguments();
  gestureHandler_(gesture, {arguments[0].toInt(), arguments[1].toInt()});
  return true;
}

void StatusNotifierItem::send(const QString& signal) const {
  bus_.send(QDBusMessage::createSignal(QLatin1String(path), itemInterface, signal));
}

}  // namespace vorli::ui
