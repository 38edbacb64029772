#include "ui/linux/DBusMenu.h"

#include "ui/linux/DBusPropertyCalls.h"

#include <QDBusError>

namespace vorli::ui {
namespace {

constexpr char menuIntrospection[] = R"xml(<interface name="com.canonical.dbusmenu">
  <property name="Version" type="u" access="read"/>
  <property name="TextDirection" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconThemePath" type="as" access="read"/>
  <method name="GetLayout">
    <arg type="i" name="parentId" direction="in"/><arg type="i" name="recursionDepth" direction="in"/>
    <arg type="as" name="propertyNames" direction="in"/>
    <arg type="u" name="revision" direction="out"/><arg type="(ia{sv}av)" name="layout" direction="out"/>
  </method>
  <method name="GetGroupProperties">
    <arg type="ai" name="ids" direction="in"/><arg type="as" name="propertyNames" direction="in"/>
    <arg type="a(ia{sv})" name="properties" direction="out"/>
  </method>
  <method name="GetProperty">
    <arg type="i" name="id" direction="in"/><arg type="s" name="name" direction="in"/>
    <arg type="v" name="value" direction="out"/>
  </method>
  <method name="Event">
    <arg type="i" name="id" direction="in"/><arg type="s" name="eventId" direction="in"/>
    <arg type="v" name="data" direction="in"/><arg type="u" name="timestamp" direction="in"/>
  </method>
  <method name="EventGroup">
    <arg type="a(isvu)" name="events" direction="in"/><arg type="ai" name="idErrors" direction="out"/>
  </method>
  <method name="AboutToShow">
    <arg type="i" name="id" direction="in"/><arg type="b" name="needUpdate" direction="out"/>
  </method>
  <method name="AboutToShowGroup">
    <arg type="ai" name="ids" direction="in"/>
    <arg type="ai" name="updatesNeeded" direction="out"/><arg type="ai" name="idErrors" direction="out"/>
  </method>
  <signal name="LayoutUpdated"><arg type="u" name="revision"/><arg type="i" name="parent"/></signal>
</interface>)xml";

const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

QVariantMap menuProperties() {
  return {{QStringLiteral("Version"), QVariant::fromValue<uint>(3)},
          {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
          {QStringLiteral("Status"), QStringLiteral("normal")},
          {QStringLiteral("IconThemePath"), QStringList{}}};
}

}  // namespace

const DBusMenu::Method DBusMenu::methods[] = {
    {"GetLayout", "iias", &DBusMenu::getLayout},
    {"GetGroupProperties", "aias", &DBusMenu::getGroupProperties},
    {"GetProperty", "is", &DBusMenu::getProperty},
    {"Event", "isvu", &DBusMenu::itemEvent},
    {"EventGroup", "a(isvu)", &DBusMenu::eventGroup},
    {"AboutToShow", "i", &DBusMenu::aboutToShow},
    {"AboutToShowGroup", "ai", &DBusMenu::aboutToShowGroup},
};

DBusMenu::DBusMenu(Scheduler& scheduler, QDBusConnection bus) : scheduler_(scheduler), bus_(std::move(bus)) {
  registerDBusMenuTypes();
  bus_.registerVirtualObject(QLatin1String(path), this, QDBusConnection::SingleNode);
}

DBusMenu::~DBusMenu() {
  bus_.unregisterObject(QLatin1String(path));
}

QString DBusMenu::introspect(const QString&) const {
  return QLatin1String(menuIntrospection);
}

bool DBusMenu::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
  if (answerPropertyCall(message, bus, menuInterface, menuProperties)) return true;
  if (message.interface() != menuInterface && !message.interface().isEmpty()) return false;
  for (const auto& method : methods) {
    if (message.member() != QLatin1String(method.name)) continue;
    if (message.signature() == QLatin1String(method.signature)) {
      (this->*method.handle)(message);
    } else {
      refuse(message, bus, QDBusError::InvalidArgs, message.signature());
    }
    return true;
  }
  return false;
}

void DBusMenu::getLayout(const QDBusMessage& message) {
  if (model_.revision() == 0) model_.rebuild();
  const auto arguments = message.arguments();
  const auto node = model_.layout(arguments[0].toInt(), arguments[1].toInt(), arguments[2].toStringList());
  if (!node) return refuse(message, bus_, QDBusError::InvalidArgs, QStringLiteral("no such item"));
  answer(message, bus_, {QVariant::fromValue<uint>(model_.revision()), QVariant::fromValue(*node)});
}

void DBusMenu::getGroupProperties(const QDBusMessage& message) {
  const auto arguments = message.arguments();
  const auto asked = qdbus_cast<QList<int>>(arguments[0]);
  QList<DBusMenuProperties> found;
  for (const int id : asked.isEmpty() ? model_.ids() : asked) {
    if (model_.contains(id)) found.push_back({id, model_.properties(id, arguments[1].toStringList())});
  }
  answer(message, bus_, {QVariant::fromValue(found)});
}

void DBusMenu::getProperty(const QDBusMessage& message) {
  const auto arguments = message.arguments();
  const auto name = arguments[1].toString();
  const auto properties = model_.properties(arguments[0].toInt(), {name});
  if (properties.isEmpty()) return refuse(message, bus_, QDBusError::InvalidArgs, name);
  answer(message, bus_, {QVariant::fromValue(QDBusVariant(properties.first()))});
}

void DBusMenu::itemEvent(const QDBusMessage& message) {
  const auto arguments = message.arguments();
  const int id = arguments[0].toInt();
  if (!model_.contains(id))
    return refuse(message, bus_, QDBusError::InvalidArgs, QStringLiteral("no such item"));
  answer(message, bus_);
  happened(id, arguments[1].toString());
}

void DBusMenu::eventGroup(const QDBusMessage& message) {
  const auto events = qdbus_cast<QList<DBusMenuEvent>>(message.arguments()[0]);
  QList<int> unknown;
  for (const auto& event : events) {
    if (model_.contains(event.id)) {
      happened(event.id, event.name);
    } else {
      unknown.push_back(event.id);
    }
  }
  answer(message, bus_, {QVariant::fromValue(unknown)});
}

void DBusMenu::aboutToShow(const QDBusMessage& message) {
  const int id = message.arguments()[0].toInt();
  answer(message, bus_, {id == DBusMenuModel::rootId && rebuild()});
}

void DBusMenu::aboutToShowGroup(const QDBusMessage& message) {
  QList<int> changed, unknown;
  for (const int id : qdbus_cast<QList<int>>(message.arguments()[0])) {
    if (!model_.contains(id)) unknown.push_back(id);
    if (id == DBusMenuModel::rootId && rebuild()) changed.push_back(id);
  }
  answer(message, bus_, {QVariant::fromValue(changed), QVariant::fromValue(unknown)});
}

bool DBusMenu::rebuild() {
  if (!model_.rebuild()) return false;
  auto signal =
      QDBusMessage::createSignal(QLatin1String(path), menuInterface, QStringLiteral("LayoutUpdated"));
  signal << model_.revision() << DBusMenuModel::rootId;
  bus_.send(signal);
  return true;
}

void DBusMenu::happened(int id, const QString& event) {
  if (event != QLatin1String("clicked")) return;
  // Posted to run after the reply: an action may take long or end the program.
  if (auto action = model_.actionOf(id)) scheduler_.post(std::move(action));
}

}  // namespace vorli::ui
