#pragma once

#include "ui/WindowPalette.h"

#include <QAbstractButton>

namespace vorli::ui {

/// The round button that closes a window which draws its own frame.
class WindowButton final : public QAbstractButton {
 public:
  WindowButton(Appearance appearance, QWidget* parent);

 private:
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

  const WindowPalette& palette_;
  bool showsFocus_ = false;
};

}  // namespace vorli::ui
