#pragma once

#include "ports/StatusItem.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSystemTrayIcon>
#include <functional>

class QWidget;

namespace vorli::ui {

/// The status item in an X11 system tray (XEmbed), for panels that support nothing better. Must exist only
/// while such a tray is wanted: Qt decides once per process which kind of tray it uses, and must not find the
/// other.
class TrayIconFallback final : public QObject {
 public:
  using ClickHandler = std::function<void(const ports::StatusClick&, QPoint)>;

  explicit TrayIconFallback(ClickHandler handler);
  ~TrayIconFallback() override;

  void setPicture(const ports::StatusPicture& picture);
  void setTexts(const QString& title, const QString& sentence);

  /// Rectangle of the icon, in logical pixels.
  QRect geometry() const { return icon_.geometry(); }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void adoptWindow();

  ClickHandler clickHandler_;
  QSystemTrayIcon icon_;
  QPointer<QWidget> window_;
  QString sentence_;
};

}  // namespace vorli::ui
