#pragma once

#include "ui/linux/StatusNotifierTypes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QPoint>
#include <functional>

namespace vorli::ui {

/// The status item on the session bus (org.kde.StatusNotifierItem): its icon, its texts, and the clicks that
/// a panel reports. It shows once a watcher knows its name.
class StatusNotifierItem final : public QDBusVirtualObject {
 public:
  enum class Gesture { activate, secondaryActivate, contextMenu };
  /// Called after the panel's call has been answered, with the place of the click in the panel's own pixels.
  using GestureHandler = std::function<void(Gesture, QPoint)>;

  static constexpr auto path = "/StatusNotifierItem";

  StatusNotifierItem(QDBusConnection bus, GestureHandler handler);
  ~StatusNotifierItem() override;

  /// The name under which a watcher finds the item.
  QString serviceName() const;

  void setIcon(const IconPixmaps& pixmaps);
  void setToolTip(const QString& title, const QString& text);
  void setAccessibleDescription(const QString& text);

  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

 private:
  QVariantMap properties() const;
  bool handleGesture(const QDBusMessage& message);
  void send(const QString& signal) const;

  QDBusConnection bus_;
  GestureHandler gestureHandler_;
  IconPixmaps icon_;
  NotifierToolTip toolTip_;
  QString accessibleDescription_;
};

}  // namespace vorli::ui
