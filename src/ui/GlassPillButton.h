#pragma once

#include "ui/WindowPalette.h"

#include <QAbstractButton>

namespace vorli::ui {

/// The capsule-shaped button of all windows.
class GlassPillButton final : public QAbstractButton {
 public:
  enum class Role { plain, primary };

  GlassPillButton(const QString& text, Role role, Appearance appearance, QWidget* parent);

  /// The capsule with the room for its focus ring around it.
  QSize sizeHint() const override;

  static constexpr int ringMargin = 4;

 private:
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  VerticalGradient fill() const;

  const Role role_;
  const WindowPalette& palette_;
  bool showsFocus_ = false;
};

}  // namespace vorli::ui
