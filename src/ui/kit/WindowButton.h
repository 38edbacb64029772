#pragma once

#include "ui/kit/Control.h"

namespace vorli::ui {

/// A round button of a window that draws its own frame.
class WindowButton final : public Control {
 public:
  enum class Kind { close, minimise };

  WindowButton(Kind kind, Appearance appearance, QWidget* parent);

  Kind kind() const { return kind_; }

  static constexpr int side = 28;

 private:
  void paintEvent(QPaintEvent* event) override;

  const Kind kind_;
};

}  // namespace vorli::ui
