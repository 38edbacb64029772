#pragma once

#include <QPoint>
#include <QRect>
#include <optional>

class QWindow;

namespace vorli::ui {

// Features of X11 windows that Qt lacks. On other platforms, nothing is changed and nothing is found.

/// Keeps the window above others and out of task lists and pagers. Must be called before the window is first
/// shown.
void keepOutOfTaskLists(QWindow& window);

/// Passes presses outside of `area`, in the window's native pixels, to the windows behind.
void limitInput(QWindow& window, const QRect& area);

/// Whether a mouse button is held down anywhere on the desktop.
bool isButtonHeld();

/// Whether the window is only on a workspace that the user does not see. Takes one round trip.
bool isOnOtherWorkspace(QWindow& window);

/// Rectangle of the panel at the point, in native pixels of the desktop; empty when there is none.
std::optional<QRect> panelAt(QPoint point);

}  // namespace vorli::ui
