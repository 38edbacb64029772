#pragma once

#include "ui/kit/SpokenButton.h"
#include "ui/popover/PopoverScene.h"

#include <functional>

namespace vorli::ui {

/// A control of the popover for pointer, keyboard and assistive tools. It draws nothing: the popover's
/// painter shows its state.
class PopoverControl final : public SpokenButton {
 public:
  /// Callbacks of the control, besides its clicks.
  struct Watcher {
    std::function<void(bool)> hovered, pressed, focusShown;
  };

  PopoverControl(PopoverControlId id, Watcher watcher, QWidget* parent);

  PopoverControlId id() const { return id_; }

  /// Whether the control has the focus and shows it: the first Tab shows the focus, the next ones move it.
  bool showsFocus() const { return showsFocus_; }
  void showFocus();

  /// Limits the control to the disc in its rectangle.
  void setRound();
  void placeAt(const QRectF& place);

 private:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent*) override {}
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

  const PopoverControlId id_;
  const Watcher watcher_;
  bool isRound_ = false;
  bool showsFocus_ = false;
};

/// Registers the popover and its controls with assistive tools. One call per process is enough.
void installPopoverAccessibility();

}  // namespace vorli::ui
