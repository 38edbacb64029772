#pragma once

#include "ui/kit/Control.h"

namespace vorli::ui {

/// A quiet line of two words and a name that is a link.
class MakerLink final : public Control {
 public:
  MakerLink(const QString& words, const QString& name, Appearance appearance, QWidget* parent);

  QSize sizeHint() const override;

  static constexpr int ringMargin = 6;

 private:
  void paintEvent(QPaintEvent* event) override;

  const QString words_;
};

}  // namespace vorli::ui
