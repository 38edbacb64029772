#pragma once

@class NSWindow;
class QWindow;

namespace vorli::ui {

/// The system's window behind Qt's, which is created if necessary; nil if that fails. Main thread.
NSWindow* nativeWindow(QWindow& window);

}  // namespace vorli::ui
