#pragma once

#include "flows/PreviewPickerBar.h"
#include "ui/kit/Control.h"

#include <QList>
#include <QWidget>

namespace vorli::ui {

/// The developer's strip along the top of the first steps' window, with a button for each step and state. Its
/// ground is the window's, which has round corners.
class PreviewBar final : public QWidget {
 public:
  PreviewBar(PreviewPickerBar& bar, Appearance appearance, QWidget* parent);

  static constexpr int height = 32;

 private:
  class Pill;
};

}  // namespace vorli::ui
