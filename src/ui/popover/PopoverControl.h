#pragma once

#include "ui/popover/PopoverScene.h"

#include <QAbstractButton>
#include <QLabel>
#include <functional>

namespace vorli::ui {

/// A control of the popover for pointer, keyboard and assistive tools. It draws nothing: the popover's
/// painter shows its state.
class PopoverControl final : public QAbstractButton {
 public:
  /// What it tells the popover, besides being clicked.
  struct Watcher {
    std::function<void(bool)> hovered, pressed, focusShown;
  };

  PopoverControl(PopoverControlId id, Watcher watcher, QWidget* parent);

  PopoverControlId id() const { return id_; }

  /// What is said of it: its name, what it does, and its value, if it has one.
  void say(const QString& name, const QString& hint, const QString& value = {});
  const QString& spokenValue() const { return value_; }

  /// Whether it has the focus and shows so: the first Tab shows where the focus is, the next ones move it.
  bool showsFocus() const { return showsFocus_; }
  void showFocus();

  /// The control is the disc in its rectangle.
  void setRound();
  void placeAt(const QRectF& place);

 private:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent*) override {}
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

  const PopoverControlId id_;
  const Watcher watcher_;
  QString value_;
  bool isRound_ = false;
  bool showsFocus_ = false;
};

/// A text of the popover for assistive tools; drawn by the popover's painter.
class PopoverText final : public QLabel {
 public:
  explicit PopoverText(QWidget* parent);

 private:
  void paintEvent(QPaintEvent*) override {}
};

/// Makes the popover and its controls known to assistive tools. Once in a process is enough.
void installPopoverAccessibility();

}  // namespace vorli::ui
