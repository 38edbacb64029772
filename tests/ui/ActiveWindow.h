#pragma once

#include <QApplication>

namespace vorli::ui {

/// Makes it the active window at once, without a window manager. Qt has deprecated the call, and its other
/// one waits for the system's answer.
inline void makeActive(QWidget& window) {
  QT_WARNING_PUSH
  QT_WARNING_DISABLE_DEPRECATED
  QApplication::setActiveWindow(&window);
  QT_WARNING_POP
}

}  // namespace vorli::ui
