#pragma once

#include "ports/StatusItem.h"

#include <Qt>
#include <optional>

namespace vorli::ui {

/// Returns the click that the release of a mouse button on the tray icon means. Empty for all buttons but the
/// left and the right one: many mice send the others by accident, and panels use them for themselves.
std::optional<ports::StatusClick> trayClick(Qt::MouseButton button, Qt::KeyboardModifiers modifiers);

}  // namespace vorli::ui
