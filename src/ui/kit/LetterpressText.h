#pragma once

#include "ui/kit/WindowPalette.h"

#include <QLabel>

namespace vorli::ui {

/// A one-line title that looks pressed into the sheet.
class LetterpressText final : public QLabel {
 public:
  LetterpressText(const QString& text, double points, Appearance appearance, QWidget* parent);

 private:
  void paintEvent(QPaintEvent* event) override;

  const WindowPalette& palette_;
};

}  // namespace vorli::ui
