#include "ui/status/TrayClick.h"

namespace vorli::ui {

std::optional<ports::StatusClick> trayClick(Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
  using ports::StatusClick;
  const auto control =
      modifiers.testFlag(Qt::ControlModifier) ? StatusClick::Control::held : StatusClick::Control::up;
  if (button == Qt::LeftButton) return StatusClick{StatusClick::Button::left, control};
  if (button == Qt::RightButton) return StatusClick{StatusClick::Button::right, control};
  return std::nullopt;
}

}  // namespace vorli::ui
