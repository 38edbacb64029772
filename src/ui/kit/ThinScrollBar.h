#pragma once

#include "ui/kit/WindowPalette.h"

#include <QScrollBar>

namespace vorli::ui {

/// A scroll bar that is only a thumb.
class ThinScrollBar final : public QScrollBar {
 public:
  ThinScrollBar(Qt::Orientation orientation, Appearance appearance, QWidget* parent);

  QSize sizeHint() const override;

 private:
  void paintEvent(QPaintEvent* event) override;

  const WindowPalette& palette_;
};

}  // namespace vorli::ui
