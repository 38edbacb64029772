#pragma once

#include "ui/kit/WindowPalette.h"

#include <QProxyStyle>

namespace vorli::ui {

/// Draws the status item's menu as one sheet with round corners. An action's data is shown as its shortcut.
class StatusMenuStyle final : public QProxyStyle {
 public:
  static constexpr double cornerRadius = 12.0;

  explicit StatusMenuStyle(Appearance appearance);

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returnData) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                         const QWidget* widget) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;

 private:
  const WindowPalette& palette_;
};

}  // namespace vorli::ui
