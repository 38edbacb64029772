#pragma once

#include "ui/kit/Control.h"

namespace vorli::ui {

/// A box with a check and a sentence beside it.
class CheckBox final : public Control {
 public:
  CheckBox(const QString& text, Appearance appearance, QWidget* parent);

  /// Size with the sentence in one line.
  QSize sizeHint() const override;
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

  static constexpr int ringMargin = 4;

 private:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace vorli::ui
