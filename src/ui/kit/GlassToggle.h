#pragma once

#include "ui/kit/Control.h"
#include "ui/kit/RowFace.h"

namespace vorli::ui {

/// A row with a switch at its right end; a press anywhere on the row turns the switch. The tile lights up
/// with it.
class GlassToggle final : public Control {
 public:
  GlassToggle(const RowFace& face, Appearance appearance, QWidget* parent);

  /// Replaces the text below the title.
  void setText(const QString& text);

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

  static constexpr QSizeF switchSize{40.0, 24.0};

 private:
  void paintEvent(QPaintEvent* event) override;
  void paintSwitch(QPainter& painter, const QRectF& track) const;

  RowFace face_;
  MovingValue knob_{*this, 0.0};  // position: 0 off, 1 on
  MovingValue lit_{*this, 0.0};   // how far the colours have faded in
};

}  // namespace vorli::ui
