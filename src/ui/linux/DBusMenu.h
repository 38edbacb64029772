#pragma once

#include "base/Scheduler.h"
#include "ui/linux/DBusMenuModel.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace vorli::ui {

/// The status item's menu on the session bus (com.canonical.dbusmenu): the panel draws it and reports what
/// was chosen. It always exists, because a panel shows its own menu for an item without one. Its rows are
/// rebuilt for each opening.
class DBusMenu final : public QDBusVirtualObject {
 public:
  static constexpr auto path = "/Menu";

  DBusMenu(Scheduler& scheduler, QDBusConnection bus);
  ~DBusMenu() override;

  void setProvider(DBusMenuModel::Provider provider) { model_.setProvider(std::move(provider)); }

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

 private:
  using Handler = void (DBusMenu::*)(const QDBusMessage&);

  struct Method {
    const char* name;
    const char* signature;
    Handler handle;
  };
  static const Method methods[];

  void getLayout(const QDBusMessage& message);
  void getGroupProperties(const QDBusMessage& message);
  void getProperty(const QDBusMessage& message);
  void itemEvent(const QDBusMessage& message);
  void eventGroup(const QDBusMessage& message);
  void aboutToShow(const QDBusMessage& message);
  void aboutToShowGroup(const QDBusMessage& message);

  bool rebuild();
  void happened(int id, const QString& event);

  Scheduler& scheduler_;
  QDBusConnection bus_;
  DBusMenuModel model_;
};

}  // namespace vorli::ui
