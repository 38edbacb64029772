#pragma once

#include <QPoint>
#include <QRect>
#include <optional>

class QWindow;

namespace vorli::ui {

// What Qt does not do for a window on X11. On another platform these do nothing, and know of nothing.

/// Keeps the window out of task lists and pagers and above others, from its first showing on. Before it is
/// shown.
void keepOutOfTaskLists(QWindow& window);

/// Lets presses outside of `area`, in the window's native pixels, go to what lies behind the window.
void limitInput(QWindow& window, const QRect& area);

/// Whether a mouse button is held down, wherever on the desktop.
bool isButtonHeld();

/// The panel's window that holds the point; native pixels of the desktop.
std::optional<QRect> panelAt(QPoint point);

}  // namespace vorli::ui
