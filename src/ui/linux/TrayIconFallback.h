#pragma once

#include "ports/StatusItem.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSystemTrayIcon>
#include <functional>

class QWidget;

namespace vorli::ui {

/// The status item in an X11 system tray (XEmbed), for panels that know nothing better. Exists only while
/// such a tray is wanted: Qt decides once in a process which kind of tray it uses, and must not see the
/// other.
class TrayIconFallback final : public QObject {
 public:
  using ClickHandler = std::function<void(const ports::StatusClick&, QPoint)>;

  explicit TrayIconFallback(ClickHandler handler);
  ~TrayIconFallback() override;

  void setPicture(const ports::StatusPicture& picture);
  void setTexts(const QString& title, const QString& sentence);

  /// Where the icon is, in logical pixels.
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
