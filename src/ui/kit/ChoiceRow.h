#pragma once

#include "ui/kit/PillChoice.h"
#include "ui/kit/RowFace.h"

#include <QWidget>

namespace vorli::ui {

/// A row with a choice between a few words at its right end.
class ChoiceRow final : public QWidget {
 public:
  ChoiceRow(const RowFace& face, const QStringList& words, Appearance appearance, QWidget* parent);

  PillChoice& choice() { return *choice_; }

  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 private:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

  const WindowPalette& palette_;
  const RowFace face_;
  PillChoice* choice_;
};

}  // namespace vorli::ui
