#pragma once

#include <QCoreApplication>
#include <QEvent>

namespace vorli::ui {

/// Destroys closed windows, and delivers pending events.
inline void settleWindows() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QCoreApplication::processEvents();
}

}  // namespace vorli::ui
